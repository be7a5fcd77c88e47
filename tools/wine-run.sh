#!/bin/sh
# Runs a Windows program under Wine without a screen: tools/wine-run.sh PROGRAM.exe [ARGUMENT...]
#
# Its own Wine folder is made at the first run, below $XDG_CACHE_HOME. The null graphics driver has
# windows, messages, dialogs and controls but draws nothing and needs no X server. WINE_UI=x11 uses
# another folder that draws on $DISPLAY: a server of Wine that was started without a display would
# serve no program with one.
#
#   WINE_TIMEOUT   seconds after which the program is ended (600)
ui=${WINE_UI:-null}
: "${WINEPREFIX:=${XDG_CACHE_HOME:-$HOME/.cache}/corvel-wine-$ui}"
: "${WINEDEBUG:=-all}"
# No offers to install Mono or Gecko, no entries in the menus of the desktop, and an end instead of a
# debugger that waits for ever when a program crashes.
: "${WINEDLLOVERRIDES:=mscoree,mshtml,winemenubuilder.exe,winedbg.exe=}"
export WINEPREFIX WINEDEBUG WINEDLLOVERRIDES
export WINEARCH=win64
# The code page of the system follows the locale: the tests want the Western one everywhere.
export LC_ALL=C.UTF-8
wine=/usr/lib/wine/wine64
# Wine needs a page at a fixed address. With random addresses one start in some thousands finds
# something of its own there, and ends with status 1 and without a word.
setarch -R true 2>/dev/null && wine="setarch -R $wine"
server=/usr/lib/wine/wineserver
[ "$ui" = null ] && unset DISPLAY

make_prefix() {
  timeout 180 $wine wineboot -i >/dev/null 2>&1 || return 1
  if [ "$ui" = null ]; then
    timeout 60 $wine reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f \
      >/dev/null 2>&1 || return 1
  else
    # Title bars are Wine's to draw: a screen for tests has no window manager.
    timeout 60 $wine reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /d N /f \
      >/dev/null 2>&1 || return 1
  fi
  timeout 60 $server -w
  # Links in the place of copies of Wine's own libraries: 45 MB instead of 700.
  own=/usr/lib/x86_64-linux-gnu/wine/x86_64-windows
  for copy in "$WINEPREFIX"/drive_c/windows/system32/*; do
    original=$own/${copy##*/}
    [ -f "$original" ] && cmp -s "$copy" "$original" && ln -sf "$original" "$copy"
  done
  rm -rf "$WINEPREFIX/drive_c/windows/winsxs"
  touch "$WINEPREFIX/.ready"
}

# Wine's Tahoma and its symbols of title bars (package fonts-wine), which it does not find itself. A
# server that runs already goes on without.
link_fonts() {
  for font in /usr/share/wine/fonts/*; do
    [ -f "$font" ] && ln -sf "$font" "$WINEPREFIX/drive_c/windows/Fonts/"
  done
}

if [ ! -f "$WINEPREFIX/.ready" ]; then
  mkdir -p "$(dirname "$WINEPREFIX")"
  (
    flock 9
    [ -f "$WINEPREFIX/.ready" ] || make_prefix
  ) 9>"$WINEPREFIX.lock" || { echo "wine-run.sh: Wine cannot make $WINEPREFIX" >&2; exit 125; }
fi
[ -e "$WINEPREFIX/drive_c/windows/Fonts/tahoma.ttf" ] || link_fonts

# A server that was started without standard streams would serve nobody.
[ -e /proc/self/fd/0 ] || exec </dev/null
[ -e /proc/self/fd/1 ] || exec >/dev/null
[ -e /proc/self/fd/2 ] || exec 2>/dev/null

# The server and its helpers stay for a minute after the last program: a start takes a tenth of a
# second then, and a whole one without. It has to be started apart from the program, whose output
# would not end before the server's otherwise. The same holds for the desktop, which comes with the
# first program that needs it and goes a second after the last one.
$server -p60 </dev/null >/dev/null 2>&1
start_desktop() {
  timeout 60 $wine rundll32 user32.dll,GetDesktopWindow </dev/null >/dev/null 2>&1
}

# Without a screen a program that nobody sees keeps the desktop for some minutes: asking for it anew
# at each start takes longer than most starts. Its marker is made when the desktop stands, and counts
# as long as the program has most of its time before it.
keeper=$WINEPREFIX.desktop
desktop_is_kept() {
  [ -n "$(find "$keeper" -mmin -8 2>/dev/null)" ] && kill -0 "$(cat "$keeper")" 2>/dev/null
}
keep_desktop() {
  flock 9
  desktop_is_kept && return
  setsid timeout 900 $wine notepad </dev/null >/dev/null 2>&1 9>&- &
  start_desktop 9>&-
  echo $! >"$keeper"
}

if [ "$ui" != null ]; then
  start_desktop
elif ! desktop_is_kept; then
  keep_desktop 9>"$WINEPREFIX.lock"
fi
exec timeout "${WINE_TIMEOUT:-600}" $wine "$@"
