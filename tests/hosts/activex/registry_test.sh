#!/bin/sh
# registry_test.sh DLL IDL: registers the control with regsvr32 /s, reads
# every key of registry_keys.txt back with reg query, unregisters with /u and
# checks that each key is gone, then registers it again for the other tests.
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

wine regsvr32 /s "$dll" || fail "regsvr32 /s exited with $?"
report="$(keys_present)"
[ -z "$report" ] || { echo "$report"; failures=$((failures + $(echo "$report" | wc -l))); }

wine regsvr32 /s /u "$dll" || fail "regsvr32 /u exited with $?"
for key in "CLSID\\$clsid" "BvxCad.BvxCad" "TypeLib\\$libid" "Interface\\$iid"; do
  if wine reg query "HKCR\\$key" >/dev/null 2>&1; then fail "$key is still there after /u"; fi
done

wine regsvr32 /s "$dll" || fail "registering again exited with $?"
[ "$failures" -eq 0 ] || { echo "$failures registry checks failed"; exit 1; }
echo "registration checked: $(grep -vc '^#' "$table") values, removal of 4 keys"
