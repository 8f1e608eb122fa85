#!/bin/sh
# check-manual.sh PAGE CLIENT: the manual page is without a fault that groff(1) sees, and names all that --help names.
set -eu
page=$1
client=$2
faults=$(groff -man -Tutf8 -ww -z "$page" 2>&1)
if [ -n "$faults" ]; then
    printf '%s\n' "$faults"
    exit 1
fi
text=$(groff -man -Tascii -P-c -P-b -P-u "$page")
options=$("$client" --help | grep --only-matching -e '--[a-z][a-z-]*' | sort -u)
if [ -z "$options" ]; then
    echo "--help names no option"
    exit 1
fi
status=0
for option in $options; do
    case $text in
    *"$option"*) ;;
    *)
        echo "$page does not name $option"
        status=1
        ;;
    esac
done
exit $status
