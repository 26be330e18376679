#!/bin/bash
# Signs a program in its place with the certificate and key in MIRVANE_CERTIFICATE (.p12, .pfx). Its password is in the
# file that MIRVANE_CERTIFICATE_PASSWORD names; without it there is none. MIRVANE_TIMESTAMP is the address of a time stamp
# server (RFC 3161), without which Windows rejects the signature as soon as the certificate expires; "none" is for tests.
#
#   package/sign.sh PROGRAM
set -euo pipefail
: "${MIRVANE_TIMESTAMP:?a signature needs the address of a time stamp server}"
stamp=(-ts "$MIRVANE_TIMESTAMP")
[[ $MIRVANE_TIMESTAMP != none ]] || stamp=()
signed=$(mktemp "$1.XXXXXX")
trap 'rm -f "$signed"' EXIT
rm "$signed"
password=(-pass '')
[[ ! ${MIRVANE_CERTIFICATE_PASSWORD-} ]] || password=(-readpass "$MIRVANE_CERTIFICATE_PASSWORD")
osslsigncode sign -pkcs12 "$MIRVANE_CERTIFICATE" "${password[@]}" -h sha256 -n MirvaneEFT \
  "${stamp[@]}" -in "$1" -out "$signed"
mv "$signed" "$1"
