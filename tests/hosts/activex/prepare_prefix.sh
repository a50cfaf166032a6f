#!/bin/sh
# A Wine prefix for the control's tests: made afresh, with the null display
# driver (no X server needed) and no automatic debugger, so that a crash
# ends the program at once instead of waiting on a debugger.
set -eu
rm -rf "$WINEPREFIX"
timeout 300 wineboot -i
wine reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f
wine reg add 'HKCU\Software\Wine\DllOverrides' /v winedbg.exe /d '' /f
wineserver -w
