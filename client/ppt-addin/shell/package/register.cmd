@echo off
rem Registers the add-in in this folder for the user who runs this. Needs no administrator.
rem With /quiet it does not wait for a key at the end.
setlocal
set tool=%SystemRoot%\System32\regsvr32.exe
rem A 32-bit program that starts this sees the 64-bit tools under another name.
if exist "%SystemRoot%\Sysnative\regsvr32.exe" set tool=%SystemRoot%\Sysnative\regsvr32.exe
"%tool%" /s "%~dp0PptAddin.dll"
if errorlevel 1 (
  echo The add-in could not be registered. Is this a 64-bit Windows, and PptAddin.dll beside this file?
  if /i not "%~1"=="/quiet" pause
  exit /b 1
)
echo Registered. Start PowerPoint or WPS Presentation again.
if not exist "%~dp0WebView2Loader.dll" echo WebView2Loader.dll is missing beside it: see install.html. Without it the pane cannot show its page.
if /i not "%~1"=="/quiet" pause
exit /b 0
