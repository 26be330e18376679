# Looks into the second folder of the box, whose name a script cannot write.
saved="$WINEPREFIX/drive_c/копии/ABC12345678/0042/ABC123456780042x_b.txt"
rm -f "$saved"
await grep -aq "$(iconv -t CP1253 <<<υπογραφή)" "$saved" || die "nothing in the folder whose name no code page has"
