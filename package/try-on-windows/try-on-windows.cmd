@echo off
rem Double-click this file. It tries on this Windows machine whatever can be tried without a cash register, takes a few
rem minutes, takes back all that it did, and leaves one file beside it: try-on-windows.txt, with one line for each trial.
rem
rem     try-on-windows.cmd /nopause [32 or 64]
rem
rem does not wait for a key at the end, and sets the exit code: 0 when nothing failed. 32 or 64 tries that bitness alone.
setlocal
set system=%SystemRoot%\System32
rem A 32-bit program sees the 64-bit ones there.
if defined PROCESSOR_ARCHITEW6432 set system=%SystemRoot%\Sysnative
"%system%\cscript.exe" //nologo "%~dp0try-on-windows\try.js" %2
set result=%ERRORLEVEL%
if not "%~1"=="/nopause" pause
exit /b %result%
