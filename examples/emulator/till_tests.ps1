# A till's own tests against the emulator, in PowerShell, with its address in $env:MIRVANE_WEB:
#
#   powershell -ExecutionPolicy Bypass -File till_tests.ps1
$ErrorActionPreference = 'Stop'
$web = if ($env:MIRVANE_WEB) { $env:MIRVANE_WEB } else { 'http://127.0.0.1:8100' }

# Throws if the emulator refuses. Sends bytes, because Windows PowerShell would send a code page, which is not JSON.
function Emulator($method, $path, $body) {
    $data = if ($body) { [Text.Encoding]::UTF8.GetBytes(($body | ConvertTo-Json -Depth 9 -Compress)) }
    Invoke-RestMethod "$web/api/v1$path" -Method $method -Body $data
}

# The till under test. Yours talks to the register through its component; this one sends the register's own commands.
function Till($command) { Emulator POST /commands @{ command = $command } }
function Sell($name, $price) { Till "3/S//$name///1.000/$price/1/24.00/1/" | Out-Null }
function Verify($what) { Emulator POST '/verify?wait=5' $what | Out-Null }
function Holds($isSo, $what) { if (-not $isSo) { throw "$what does not hold" } }

Emulator POST /reset @{ preset = 'fresh' } | Out-Null
Sell Coffee 1.80
Till '5/1///5.00///' | Out-Null
Till 'O/1/' | Out-Null
Holds ((Emulator GET '/receipts/last?wait=5').change -eq 3.2) 'the change'
Verify @{ sold = @{ description = 'Coffee'; price = 1.8 }; times = 1 }

Emulator POST /reset @{ preset = 'fresh' } | Out-Null
Emulator PATCH /card @{ next = @(156); seconds = 0 } | Out-Null
Sell Lunch 12.50
Till '5/2///12.50/1/1/' | Out-Null
Holds ((Till '?/').code -eq 156) 'the declined card'
Till '5/1///0.00///' | Out-Null
Till 'O/1/' | Out-Null
Verify @{ paid = @{ tender = 'card' }; times = 0 }
Verify @{ paid = @{ tender = 'cash' }; times = 1 }
'passed'
