@echo off
rem Takes the add-in in this folder out again, for the user who runs this.
regsvr32.exe /u /s "%~dp0PptAddin.dll"
if errorlevel 1 (
  echo The add-in could not be taken out. Is PptAddin.dll beside this file?
  pause
  exit /b 1
)
echo Taken out. The folder can be deleted once PowerPoint and WPS Presentation are closed.
