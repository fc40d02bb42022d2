@echo off
rem Registers the add-in in this folder for the user who runs this. Needs no administrator.
regsvr32.exe /s "%~dp0PptAddin.dll"
if errorlevel 1 (
  echo The add-in could not be registered. Is the 64-bit Windows folder on the path, and PptAddin.dll beside this file?
  pause
  exit /b 1
)
echo Registered. Restart PowerPoint or WPS Presentation.
