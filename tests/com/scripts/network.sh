# The receipt is that of receipt.vbs.
source "$here/scripts/receipt.sh"
