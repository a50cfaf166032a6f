#!/bin/sh
# registry_test.sh DLL IDL: registers the control with regsvr32 /s, reads
# every key of registry_keys.txt back with reg query, unregisters with /u and
# checks that HKEY_CLASSES_ROOT is as it was before, then registers the
# control again for the other tests.
set -eu
dll="$(winepath -w "$1")"
idl="$2"
table="$(dirname "$0")/registry_keys.txt"
failures=0
fail() { echo "FAIL $*"; failures=$((failures + 1)); }

# The uuid on the attribute line in front of a declaration.
uuid_before() { grep -B1 "$1" "$idl" | grep -o 'uuid([0-9A-Fa-f-]*)' | head -n 1 | sed 's/uuid(\(.*\))/{\1}/'; }
clsid="$(uuid_before '^ *coclass ')"
libid="$(uuid_before '^library ')"
iid="$(grep 'dual' "$idl" | grep -o 'uuid([0-9A-Fa-f-]*)' | head -n 1 | sed 's/uuid(\(.*\))/{\1}/')"
[ -n "$clsid" ] && [ -n "$libid" ] && [ -n "$iid" ] || { echo "no identities in $idl"; exit 1; }

expand() { printf '%s' "$1" | sed -e "s/{CLSID}/$clsid/g" -e "s/{LIBID}/$libid/g" -e "s/{IID}/$iid/g"; }
trim() { printf '%s' "$1" | sed -e 's/^ *//' -e 's/ *$//'; }

# The data of one value, or nothing with a non-zero status when it is absent.
read_value() {
  if [ -z "$2" ]; then set -- "$1" /ve; else set -- "$1" /v "$2"; fi
  wine reg query "HKCR\\$1" "$2" ${3:+"$3"} 2>/dev/null | tr -d '\r' | grep 'REG_SZ' | sed 's/.*REG_SZ *//'
}

keys_present() {
  grep -v '^#' "$table" | while IFS='|' read -r key name data; do
    key="$(expand "$(trim "$key")")"; name="$(trim "$name")"; data="$(trim "$data")"
    case "$data" in
      '{DLL}') want="$dll" ;;
      =0x*) want="$(printf '%d' "${data#=}")" ;;
      *) want="$(expand "$data")" ;;
    esac
    if ! wine reg query "HKCR\\$key" >/dev/null 2>&1; then echo "FAIL missing key $key"; continue; fi
    got="$(read_value "$key" "$name")"
    # The type library's path may carry the \\?\ prefix.
    [ "$got" = "$want" ] || [ "$got" = "\\\\?\\$want" ] || echo "FAIL $key [$name]: '$got', expected '$want'"
  done
}

# HKEY_CLASSES_ROOT as reg export writes it, into $work/NAME.
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
snapshot() {
  exported="$(winepath -u "C:\\$1.reg")"
  wine reg export HKCR "C:\\$1.reg" /y >/dev/null 2>&1 && iconv -f UTF-16 -t UTF-8 "$exported" > "$work/$1" &&
    [ -s "$work/$1" ] || fail "reg export of HKCR failed"
  rm -f "$exported"
}
wine regsvr32 /s /u "$dll" || fail "regsvr32 /u of a control not registered exited with $?"
snapshot before

wine regsvr32 /s "$dll" || fail "regsvr32 /s exited with $?"
report="$(keys_present)"
[ -z "$report" ] || { echo "$report"; failures=$((failures + $(echo "$report" | wc -l))); }

wine regsvr32 /s /u "$dll" || fail "regsvr32 /u exited with $?"
snapshot after
left="$(diff "$work/before" "$work/after" | grep '^[<>] ' | head -n 20)"
[ -z "$left" ] || fail "HKEY_CLASSES_ROOT differs after /u from before registering:
$left"

wine regsvr32 /s "$dll" || fail "registering again exited with $?"
[ "$failures" -eq 0 ] || { echo "$failures registry checks failed"; exit 1; }
echo "registration checked: $(grep -vc '^#' "$table") values, and nothing left after /u"
