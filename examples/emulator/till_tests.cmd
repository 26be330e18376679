@echo off
rem A till's own tests against the emulator, in Windows' command prompt. It asks for curl, which Windows 10 has.
rem The prompt's own code page is no JSON: texts beyond ASCII go into a file that is saved as UTF-8, behind -d @FILE.
setlocal
if "%MIRVANE_WEB%"=="" set MIRVANE_WEB=http://127.0.0.1:8100
set ask=curl -sS --fail-with-body %MIRVANE_WEB%/api/v1

%ask%/reset -d "{}" -o nul || goto failed
%ask%/commands -d "{\"command\": \"3/S//Coffee///1.000/1.80/1/24.00/1/\"}" -o nul || goto failed
%ask%/commands -d "{\"command\": \"5/1///5.00///\"}" -o nul || goto failed
%ask%/commands -d "{\"command\": \"O/1/\"}" -o nul || goto failed
%ask%/verify?wait=5 -d "{\"sold\": {\"description\": \"Coffee\", \"price\": 1.8}, \"times\": 1}" || goto failed

%ask%/reset -d "{}" -o nul || goto failed
%ask%/card -X PATCH -d "{\"next\": [156], \"seconds\": 0}" -o nul || goto failed
%ask%/commands -d "{\"command\": \"3/S//Lunch///1.000/12.50/1/24.00/1/\"}" -o nul || goto failed
%ask%/commands -d "{\"command\": \"5/2///12.50/1/1/\"}" -o nul || goto failed
%ask%/commands -d "{\"command\": \"?/\"}" | find "156" >nul || goto failed
%ask%/commands -d "{\"command\": \"5/1///0.00///\"}" -o nul || goto failed
%ask%/commands -d "{\"command\": \"O/1/\"}" -o nul || goto failed
%ask%/verify?wait=5 -d "{\"paid\": {\"tender\": \"cash\"}, \"times\": 1}" || goto failed
echo passed
exit /b 0

:failed
echo failed
exit /b 1
