# A small till: connect, sell, handle refusals, pay, disconnect. Not run here.
#
#   powershell -ExecutionPolicy Bypass -File till.ps1 127.0.0.1:9100
#
# The release has this file in UTF-16. In the sources it is in UTF-8, for which Windows PowerShell needs a byte order
# mark: save a copy as "UTF-8 with BOM" or as UTF-16 before you run it. PowerShell 7 reads it as it is.
param([string] $Port = '127.0.0.1:9100')
$ErrorActionPreference = 'Stop'

$register = New-Object -ComObject 'VarlenFiscalQ7734.fiscalTrevikModule'
# The component writes to these: every use of them is a reference.
[int16] $result = 0
[string] $exresult = ''
[bool] $suppress = $true

function Test-Success([string] $Step) {
    if ($script:result -ne 0) { Write-Host "  ${Step}: $script:result $script:exresult" }
    $script:result -eq 0
}

function Confirm-Step([bool] $Done, [string] $Step) {
    if (-not $Done) { throw "FAIL $Step" }
}

# The quantity is what somebody typed: a text that is a number is accepted.
function Add-Sale([string] $Description, $Quantity, [double] $Price, [double] $VatRate) {
    Write-Host "selling $Quantity x $Description"
    try {
        $null = $register.ItemSale($Description, $Quantity, $Price, $VatRate, 1, [ref] $script:result,
            [ref] $script:exresult, [ref] $script:suppress)
    } catch {
        # The call itself is invalid: nothing was sent, and the variables are unchanged.
        Write-Host "  $($_.Exception.Message)"
        return $false
    }
    Test-Success 'ItemSale'
}

function Add-Payment([int16] $Kind, [string] $Description, [double] $Amount) {
    Write-Host ('paying {0:F2} {1}' -f $Amount, $Description)
    $null = $register.Payment($Kind, $Description, $Amount, 0, 0, [ref] $script:result, [ref] $script:exresult,
        [ref] $script:suppress)
    (Test-Success 'Payment') -and -not $register.StatusRead.isTransactionOpen
}

$register.Connect_($Port, [ref] $result, [ref] $exresult, [ref] $suppress)
Confirm-Step (Test-Success 'Connect_') 'connecting'
[string] $serialNumber = ''
$null = $register.getSerialNumber([ref] $serialNumber, [ref] $result, [ref] $exresult, [ref] $suppress)
Confirm-Step (Test-Success 'getSerialNumber') 'finding a register'
Write-Host "register $serialNumber"

Confirm-Step (Add-Sale 'Καφές ελληνικός' 2 1.80 24) 'selling coffee'
# The register has no VAT rate of 17 %.
Confirm-Step (-not (Add-Sale 'Τυρόπιτα' 1 2.20 17) -and (Add-Sale 'Τυρόπιτα' 1 2.20 13)) 'a refused item'
Confirm-Step (-not (Add-Sale 'Νερό' 'μισό' 0.50 13) -and (Add-Sale 'Νερό' '0,5' 0.50 13)) 'an impossible quantity'
$null = $register.commentPrinterPrint('Σας ευχαριστούμε!', 1, [ref] $result, [ref] $exresult, [ref] $suppress)
Confirm-Step (Test-Success 'commentPrinterPrint') 'thanking'

$totals = New-Object -ComObject 'VarlenFiscalQ7734.clsTransTotal'
$register.transactionTotals($totals, [ref] $result, [ref] $exresult, [ref] $suppress)
Confirm-Step (Test-Success 'transactionTotals') 'asking for the total'
Write-Host ('total {0:F2}' -f $totals.receiptTotalAmt)
# Change cannot be given on a card.
Confirm-Step (-not (Add-Payment 2 'ΚΑΡΤΑ' 10) -and (Add-Payment 1 'ΜΕΤΡΗΤΑ' 10)) 'paying'

$null = $register.DisConnect_([ref] $Port, [ref] $result, [ref] $exresult, [ref] $suppress)
# A closed port is reported as 1, the value of the system call that closed it.
Confirm-Step ($result -eq 1) 'disconnecting'
Write-Host 'ok'
