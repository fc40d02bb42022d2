@echo off
rem Takes the add-in in this folder out again, for the user who runs this.
rem With /quiet it does not wait for a key at the end.
setlocal
set tool=%SystemRoot%\System32\regsvr32.exe
rem A 32-bit program that starts this sees the 64-bit tools under another name.
if exist "%SystemRoot%\Sysnative\regsvr32.exe" set tool=%SystemRoot%\Sysnative\regsvr32.exe
"%tool%" /u /s "%~dp0PptAddin.dll"
if errorlevel 1 (
  echo The add-in could not be taken out. Is PptAddin.dll beside this file?
  if /i not "%~1"=="/quiet" pause
  exit /b 1
)
echo Taken out. The folder can be deleted once PowerPoint and WPS Presentation are closed.
if /i not "%~1"=="/quiet" pause
exit /b 0
