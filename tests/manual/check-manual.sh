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
status=0
for option in $("$client" --help | grep --only-matching -e '--[a-z][a-z-]*' | sort -u); do
    case $text in
    *"$option"*) ;;
    *)
        echo "$page does not name $option"
        status=1
        ;;
    esac
done
exit $status
