#!/usr/bin/env bash
# Regenerates the message corpus under tests/data/ with the openssl command line alone, and
# writes tests/data/MANIFEST: each file, its kind, the type it must decode as, and what its
# decode must reach.
#
#   tests/data/make-corpus.sh                  regenerate the committed corpus
#   tests/data/make-corpus.sh --large-crl DIR  only write DIR/crl-large.der, a CRL of 10,000
#                                              entries (too big to commit; the build makes it)
#
# The keys under keys/ are made once and then reused, and every certificate and CRL carries
# fixed dates and serials, so RSA-signed certificates and CRLs come out the same on every run.
# What openssl stamps with the clock or signs with a random nonce (ECDSA, DSA, OCSP and
# time-stamp replies, CMP transaction ids) changes from run to run; the tests compare each
# file with its own re-encoding, never with a recorded copy.
#
# GOST keys, certificates and signed messages need Debian's GOST engine for openssl
# (libengine-gost-openssl, installed by scripts/install-deps.sh); without it they are skipped
# with a note and the committed GOST files stay as they are.
set -euo pipefail

data=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Fixed times (UTCTime form, as "openssl ca" wants them).
start=250101000000Z
end=350101000000Z
crl_this=250601000000Z
crl_next=350601000000Z
large_crl_entries=10000

log() { echo "make-corpus: $*" >&2; }
fail() { log "$*"; exit 1; }

# Runs openssl with its chatter kept in a log that is shown only when it fails.
ossl() {
  openssl "$@" >>"$work/openssl.log" 2>&1 && return 0
  tail -n 20 "$work/openssl.log" >&2
  fail "openssl $1 failed"
}

# ------------------------------------------------------------------------ keys

key_file() { echo "$data/keys/$1.pem"; }

# Makes a key once; later runs reuse the committed one.
make_key() {
  local name=$1
  shift
  local file
  file=$(key_file "$name")
  [ -f "$file" ] && return 0
  log "new key $name"
  ossl genpkey "$@" -out "$file"
}

make_keys() {
  mkdir -p "$data/keys"
  make_key root-rsa -algorithm RSA -pkeyopt rsa_keygen_bits:2048
  make_key sub-rsa -algorithm RSA -pkeyopt rsa_keygen_bits:2048
  make_key leaf-rsa -algorithm RSA -pkeyopt rsa_keygen_bits:2048
  make_key leaf-ec -algorithm EC -pkeyopt ec_paramgen_curve:P-256 -pkeyopt ec_param_enc:named_curve
  if [ ! -f "$(key_file leaf-dsa)" ]; then
    ossl genpkey -genparam -algorithm DSA -pkeyopt dsa_paramgen_bits:2048 \
      -out "$work/dsa-params.pem"
    make_key leaf-dsa -paramfile "$work/dsa-params.pem"
  fi
  make_key leaf-ed25519 -algorithm ED25519
  make_key leaf-rsapss -algorithm RSA-PSS -pkeyopt rsa_keygen_bits:2048
  make_key ocsp-rsa -algorithm RSA -pkeyopt rsa_keygen_bits:2048
  make_key tsa-rsa -algorithm RSA -pkeyopt rsa_keygen_bits:2048
  make_key cmp-rsa -algorithm RSA -pkeyopt rsa_keygen_bits:2048
}

# ------------------------------------------------------------------------ output and manifest

manifest_lines=()

# Records one corpus file: path below tests/data, kind, type, and notes on what its decode
# must reach (free text for the reader; "extensions=N" and the like are checked by the tests).
manifest() {
  manifest_lines+=("$1	$2	$3	$4")
}

# Checks that openssl can parse a file as BER; every corpus file passes through here.
validate() {
  openssl asn1parse -inform DER -in "$1" >/dev/null 2>&1 || fail "$1 does not parse as DER/BER"
}

# The number of extensions openssl itself finds in a certificate, CRL (entry extensions
# included) or request, so that the tests hold our decode against an independent count.
# In openssl's text form the extension names are the lines indented by exactly twelve blanks
# (sixteen in a request) within the extension sections.
extension_count() {
  local file=$1 type=$2
  case "$type" in
    *.Certificate) openssl x509 -inform DER -in "$file" -noout -text |
      sed -n '/X509v3 extensions:/,/^    Signature Algorithm/p' | grep -c '^ \{12\}[^ ]' ;;
    *.CertificateList) openssl crl -inform DER -in "$file" -noout -text |
      sed -n '1,/^    Signature Algorithm/p' | grep -c '^ \{12\}[^ ]' ;;
    *.CertificationRequest) openssl req -inform DER -in "$file" -noout -text |
      sed -n '/Requested Extensions:/,/^    Signature Algorithm/p' | grep -c '^ \{16\}[^ ]' ;;
  esac || true
}

# Copies a DER file into the corpus as <kind>/<name>.der and records it; certificates, CRLs
# and requests get their extension count as a note.
add_der() {
  local src=$1 kind=$2 name=$3 type=$4 notes=${5:-}
  local file="$data/$kind/$name.der"
  mkdir -p "$data/$kind"
  cp "$src" "$file"
  validate "$file"
  case "$type" in
    *.Certificate | *.CertificateList | *.CertificationRequest)
      notes="extensions=$(extension_count "$file" "$type")${notes:+ $notes}" ;;
  esac
  manifest "$kind/$name.der" "$kind" "$type" "$notes"
}

# Copies the PEM form of the last DER file added, for the PEM path of the tools; it must
# decode to the same value, so it shares the notes of its DER twin.
add_pem() {
  local src=$1 kind=$2 name=$3
  local last=${manifest_lines[-1]}
  cp "$src" "$data/$kind/$name.pem"
  manifest "$kind/$name.pem" "$kind" "$(cut -f3 <<<"$last")" "$(cut -f4 <<<"$last")"
}

# Adds a BER form of the last DER file added as <kind>/<name>.ber (indefinite lengths, a SET
# OF out of order): it must decode to the same value and re-encode to exactly that DER twin.
add_ber() {
  local src=$1 kind=$2 name=$3
  local last=${manifest_lines[-1]}
  cp "$src" "$data/$kind/$name.ber"
  validate "$data/$kind/$name.ber"
  manifest "$kind/$name.ber" "$kind" "$(cut -f3 <<<"$last")" "$(cut -f4 <<<"$last")"
}

# The words joined by commas, for the lists of the notes.
csv() {
  local IFS=,
  echo "$*"
}

write_manifest() {
  {
    echo "# Corpus made by tests/data/make-corpus.sh; do not edit by hand."
    echo "# file	kind	type	what the decode must reach"
    echo "# extensions=N: the number of extensions of the certificate, CRL or request."
    echo "# opaque=OID,...: open-type values that stay octets, because the object sets do not"
    echo "#   know the OID (every other open-type value with an encoding must be typed)."
    echo "# reach=Type,...: types of decoded open-type values that the decode must arrive at."
    echo "# refused=STATUS: a message our modules cannot take (see make-corpus.sh for why); its"
    echo "#   decode must fail cleanly with that status."
    printf '%s\n' "${manifest_lines[@]}"
  } >"$data/MANIFEST"
}

# The PEM form of a DER file, with the armour label given.
to_pem() {
  {
    echo "-----BEGIN $1-----"
    openssl base64 -e -in "$2"
    echo "-----END $1-----"
  } >"$3"
}

# ------------------------------------------------------------------------ the CA

# One CA section of the configuration: each CA keeps its database under $work/<name>.
ca_section() {
  cat <<EOF
[ $1 ]
dir = $work/$1
database = \$dir/index.txt
new_certs_dir = \$dir/new
serial = \$dir/serial
crlnumber = \$dir/crlnumber
certificate = $work/$1.pem
private_key = $(key_file "$2")
default_md = sha256
policy = any
unique_subject = no
copy_extensions = none
email_in_dn = yes
utf8 = yes
string_mask = utf8only

EOF
}

write_ca_config() {
  {
    printf '[ ca ]\ndefault_ca = root\n\n'
    ca_section root root-rsa
    ca_section sub sub-rsa
    ca_config_rest
  } >"$work/ca.cnf"
}

ca_config_rest() {
  cat <<EOF
[ any ]
countryName = optional
stateOrProvinceName = optional
localityName = optional
organizationName = optional
organizationalUnitName = optional
commonName = optional
emailAddress = optional

[ req ]
distinguished_name = dn
prompt = no
utf8 = yes
string_mask = utf8only
[ dn ]
CN = unused

[ v3_root ]
basicConstraints = critical, CA:TRUE
keyUsage = critical, keyCertSign, cRLSign
subjectKeyIdentifier = hash

[ v3_sub ]
basicConstraints = critical, CA:TRUE, pathlen:0
keyUsage = critical, keyCertSign, cRLSign, digitalSignature
subjectKeyIdentifier = hash
authorityKeyIdentifier = keyid:always, issuer:always
certificatePolicies = 2.5.29.32.0
policyConstraints = requireExplicitPolicy:0, inhibitPolicyMapping:1
policyMappings = 1.3.6.1.4.1.55555.2.1:1.3.6.1.4.1.55555.2.2, 1.3.6.1.4.1.55555.2.3:1.3.6.1.4.1.55555.2.4
inhibitAnyPolicy = 2
nameConstraints = critical, @name_constraints
crlDistributionPoints = URI:http://crl.example.test/root.crl
authorityInfoAccess = caIssuers;URI:http://ca.example.test/root.cer, OCSP;URI:http://ocsp.example.test/

[ name_constraints ]
permitted;DNS.1 = example.test
permitted;email.1 = example.test
permitted;IP.1 = 192.168.0.0/255.255.0.0
permitted;dirName.1 = nc_dir
excluded;DNS.1 = forbidden.example.test
excluded;IP.1 = 2001:db8::/ffff:ffff::
excluded;URI.1 = .forbidden.test

[ nc_dir ]
C = DE
O = Example

# Every common extension of an end entity at once.
[ v3_full ]
basicConstraints = critical, CA:FALSE
keyUsage = critical, digitalSignature, nonRepudiation, keyEncipherment, dataEncipherment, keyAgreement, encipherOnly
extendedKeyUsage = serverAuth, clientAuth, codeSigning, emailProtection, timeStamping, OCSPSigning, 1.3.6.1.4.1.55555.3.1
subjectKeyIdentifier = hash
authorityKeyIdentifier = keyid:always, issuer:always
subjectAltName = @all_names
issuerAltName = issuer:copy, URI:http://issuer.example.test/, email:ca@example.test
certificatePolicies = ia5org, @policy_cps, @policy_notice, 1.3.6.1.4.1.55555.2.9
crlDistributionPoints = crl_dp, URI:http://crl2.example.test/sub.crl
freshestCRL = URI:http://crl.example.test/delta.crl
authorityInfoAccess = caIssuers;URI:http://ca.example.test/sub.cer, OCSP;URI:http://ocsp.example.test/, caIssuers;dirName:nc_dir
subjectInfoAccess = caRepository;URI:http://repo.example.test/, 1.3.6.1.5.5.7.48.3;URI:http://tsa.example.test/
1.3.6.1.4.1.55555.1.1 = ASN1:UTF8String:a private extension no set knows
2.5.29.16 = ASN1:SEQUENCE:key_usage_period
2.5.29.9 = ASN1:SEQUENCE:directory_attributes

[ all_names ]
email.1 = leaf@example.test
DNS.1 = leaf.example.test
DNS.2 = *.leaf.example.test
URI.1 = https://leaf.example.test/path?q=1
IP.1 = 192.168.1.10
IP.2 = 2001:db8::10
RID.1 = 1.3.6.1.4.1.55555.4.1
dirName.1 = alt_dir
otherName.1 = 1.3.6.1.5.5.7.8.9;UTF8:smtp-utf8@example.test
otherName.2 = 1.3.6.1.4.1.311.20.2.3;UTF8:upn@example.test

[ alt_dir ]
C = DE
O = Example
CN = Directory Name

[ policy_cps ]
policyIdentifier = 1.3.6.1.4.1.55555.2.1
CPS.1 = http://cps.example.test/cps.html
CPS.2 = http://cps.example.test/other.html

[ policy_notice ]
policyIdentifier = 1.3.6.1.4.1.55555.2.2
userNotice.1 = @notice

[ notice ]
explicitText = UTF8:Notice text for the corpus
organization = Example Organisation
noticeNumbers = 1, 2, 3

[ crl_dp ]
fullname = URI:http://crl.example.test/sub.crl
reasons = keyCompromise, CACompromise, superseded
CRLissuer = dirName:nc_dir

[ key_usage_period ]
notBefore = IMPLICIT:0,GENTIME:20250101000000Z
notAfter = IMPLICIT:1,GENTIME:20300101000000Z

[ directory_attributes ]
attr1 = SEQUENCE:dir_attr_dob

[ dir_attr_dob ]
type = OID:1.3.6.1.5.5.7.9.1
values = SET:dir_attr_dob_values

[ dir_attr_dob_values ]
v = GENTIME:19700101120000Z

# GeneralName kinds the configuration syntax cannot name (x400Address, ediPartyName), written
# as raw DER beside the usual ones.
[ v3_names ]
basicConstraints = CA:FALSE
subjectKeyIdentifier = hash
authorityKeyIdentifier = keyid
2.5.29.17 = ASN1:SEQUENCE:raw_names

[ raw_names ]
x400 = IMPLICIT:3C,SEQUENCE:or_address
edi = IMPLICIT:5C,SEQUENCE:edi_party
dns = IMPLICIT:2,IA5STRING:names.example.test
rid = IMPLICIT:8,OID:1.3.6.1.4.1.55555.4.2

[ or_address ]
standard = SEQUENCE:or_standard

[ or_standard ]
country = EXPLICIT:1A,PRINTABLESTRING:DE
admd = EXPLICIT:2A,PRINTABLESTRING:ADMD
org = IMPLICIT:3,PRINTABLESTRING:Example

[ edi_party ]
assigner = EXPLICIT:0C,UTF8:Assigner
party = EXPLICIT:1C,UTF8:Party Name

# "email:copy" alone gives an empty (invalid) subjectAltName to a subject without an e-mail
# address, hence the DNS name beside it.
[ v3_leaf ]
basicConstraints = CA:FALSE
keyUsage = critical, digitalSignature, keyEncipherment
extendedKeyUsage = clientAuth, emailProtection
subjectKeyIdentifier = hash
authorityKeyIdentifier = keyid
subjectAltName = email:copy, DNS:leaf.example.test
crlDistributionPoints = URI:http://crl.example.test/sub.crl
authorityInfoAccess = OCSP;URI:http://ocsp.example.test/

[ v3_ec ]
basicConstraints = CA:FALSE
keyUsage = critical, digitalSignature, keyAgreement
extendedKeyUsage = emailProtection
subjectKeyIdentifier = hash
authorityKeyIdentifier = keyid
subjectAltName = email:copy

[ v3_ocsp ]
basicConstraints = CA:FALSE
keyUsage = critical, digitalSignature
extendedKeyUsage = critical, OCSPSigning
noCheck = ignored
subjectKeyIdentifier = hash
authorityKeyIdentifier = keyid

[ v3_tsa ]
basicConstraints = CA:FALSE
keyUsage = critical, digitalSignature, nonRepudiation
extendedKeyUsage = critical, timeStamping
subjectKeyIdentifier = hash
authorityKeyIdentifier = keyid

[ v3_cmp ]
basicConstraints = CA:FALSE
keyUsage = critical, digitalSignature
subjectKeyIdentifier = hash
authorityKeyIdentifier = keyid

[ crl_ext ]
authorityKeyIdentifier = keyid:always
issuingDistributionPoint = critical, @idp

[ idp ]
fullname = URI:http://crl.example.test/sub.crl
onlysomereasons = keyCompromise, superseded
onlyuser = TRUE

[ crl_delta ]
authorityKeyIdentifier = keyid:always
2.5.29.27 = critical, ASN1:INTEGER:1
issuingDistributionPoint = critical, @idp_delta

[ idp_delta ]
fullname = URI:http://crl.example.test/delta.crl
EOF
}

init_ca_dir() {
  mkdir -p "$work/$1/new"
  : >"$work/$1/index.txt"
  echo "$2" >"$work/$1/serial"
  echo "$3" >"$work/$1/crlnumber"
}

# Issues a certificate for a key: ca_sign CA KEY SUBJECT EXTENSIONS OUT [more ca options].
# EXTENSIONS "none" makes a version 1 certificate.
ca_sign() {
  local ca=$1 key=$2 subject=$3 ext=$4 out=$5
  shift 5
  local exts=(-extensions "$ext")
  [ "$ext" != none ] || exts=()
  ossl req -new -config "$work/ca.cnf" -key "$key" -subj "$subject" -out "$work/req.pem" \
    -multivalue-rdn
  ossl ca -batch -notext -config "$work/ca.cnf" -name "$ca" -in "$work/req.pem" \
    -startdate "$start" -enddate "$end" "${exts[@]}" -preserveDN -out "$out.pem" "$@"
  ossl x509 -in "$out.pem" -outform DER -out "$out.der"
}

make_cas() {
  init_ca_dir root 01 01
  init_ca_dir sub 1001 2001
  ossl req -new -config "$work/ca.cnf" -key "$(key_file root-rsa)" \
    -subj "/C=DE/O=Example/OU=Corpus/CN=Corpus Root CA" -out "$work/req.pem"
  ossl ca -batch -notext -selfsign -config "$work/ca.cnf" -name root -in "$work/req.pem" \
    -keyfile "$(key_file root-rsa)" -startdate "$start" -enddate "$end" -extensions v3_root \
    -out "$work/root.pem"
  ossl x509 -in "$work/root.pem" -outform DER -out "$work/root.der"
  ca_sign root "$(key_file sub-rsa)" "/C=DE/O=Example/OU=Corpus/CN=Corpus Sub CA" v3_sub \
    "$work/sub"
}

# ------------------------------------------------------------------------ certificates

make_certificates() {
  local dsa_sub
  ca_sign sub "$(key_file leaf-rsa)" \
    "/C=DE/ST=Berlin/L=Berlin/O=Example/OU=Corpus/CN=Full Leaf/emailAddress=leaf@example.test" \
    v3_full "$work/full"
  ca_sign sub "$(key_file leaf-rsa)" "/C=DE/O=Example/CN=Names Leaf" v3_names "$work/names"
  ca_sign sub "$(key_file leaf-rsa)" "/C=DE/O=Example/CN=RSA Leaf/emailAddress=rsa@example.test" \
    v3_leaf "$work/rsa"
  ca_sign sub "$(key_file leaf-rsa)" "/C=DE/O=Example/CN=SHA-1 Leaf" v3_leaf "$work/sha1" -md sha1
  ca_sign sub "$(key_file leaf-ec)" "/C=DE/O=Example/CN=EC Leaf/emailAddress=ec@example.test" \
    v3_ec "$work/ec"
  ca_sign sub "$(key_file leaf-dsa)" "/C=DE/O=Example/CN=DSA Leaf" v3_leaf "$work/dsa"
  ca_sign sub "$(key_file leaf-ed25519)" "/C=DE/O=Example/CN=Ed25519 Leaf" v3_leaf \
    "$work/ed25519"
  ca_sign sub "$(key_file leaf-rsapss)" "/C=DE/O=Example/CN=RSA-PSS Leaf" v3_leaf "$work/rsapss" \
    -sigopt rsa_padding_mode:pss -sigopt rsa_pss_saltlen:32
  ca_sign sub "$(key_file ocsp-rsa)" "/C=DE/O=Example/CN=Corpus OCSP Responder" v3_ocsp \
    "$work/ocsp"
  ca_sign sub "$(key_file tsa-rsa)" "/C=DE/O=Example/CN=Corpus TSA" v3_tsa "$work/tsa"
  ca_sign sub "$(key_file cmp-rsa)" "/C=DE/O=Example/CN=Corpus CMP Server" v3_cmp "$work/cmpsrv"
  # A subject with many attribute kinds, one RDN of several values among them.
  local attrs="/DC=test/DC=example/C=DE/ST=Berlin/L=Berlin/street=Main Street 1/O=Example"
  attrs+="/OU=Corpus+OU=Names/title=Dr/SN=Surname/GN=Given/initials=GS/generationQualifier=III"
  attrs+="/pseudonym=Nick/dnQualifier=dnq/serialNumber=12345/UID=uid1/CN=Attribute Leaf"
  attrs+="/emailAddress=attrs@example.test"
  ca_sign sub "$(key_file leaf-rsa)" "$attrs" v3_leaf "$work/attrs"
  ca_sign sub "$(key_file leaf-rsa)" "/C=DE/O=Example/CN=Version 1 Leaf" none "$work/v1"
  # A certificate signed by a DSA key with SHA-1, so that both algorithm identifiers of the
  # certificate carry parameters the algorithm set knows.
  ossl req -new -x509 -key "$(key_file leaf-dsa)" -sha1 -set_serial 77 -days 3650 \
    -subj "/C=DE/O=Example/CN=DSA Self-Signed" -config "$work/ca.cnf" -extensions v3_root \
    -out "$work/dsa-self.pem"
  ossl x509 -in "$work/dsa-self.pem" -outform DER -out "$work/dsa-self.der"

  # reach= lists carried types the decode must arrive at; sha256WithRSAEncryption,
  # ecdsa-with-SHA256, id-Ed25519 and RSASSA-PSS are no members of the algorithm set, so those
  # identifiers keep their parameters as octets.
  local cert="PKIX1Explicit88.Certificate"
  local leaf
  leaf="reach=$(csv BasicConstraintsSyntax KeyUsage _extKeyUsage_ExtnType SubjectKeyIdentifier \
    AuthorityKeyIdentifier GeneralNames CRLDistPointsSyntax AuthorityInfoAccessSyntax)"
  add_der "$work/root.der" cert root-ca "$cert" "reach=$(csv BasicConstraintsSyntax KeyUsage \
    SubjectKeyIdentifier NULLParams _commonName_Type _organizationName_Type) \
    opaque=1.2.840.113549.1.1.11"
  add_der "$work/sub.der" cert sub-ca "$cert" "reach=$(csv CertificatePoliciesSyntax \
    PolicyConstraintsSyntax PolicyMappingsSyntax NameConstraintsSyntax AuthorityKeyIdentifier) \
    opaque=2.5.29.54"
  add_der "$work/full.der" cert full-extensions "$cert" "$leaf,$(csv CertificatePoliciesSyntax \
    FreshestCRL SubjectInfoAccessSyntax PrivateKeyUsagePeriod AttributesSyntax PHGString) \
    opaque=1.3.6.1.4.1.55555.1.1"
  add_pem "$work/full.pem" cert full-extensions
  add_der "$work/names.der" cert general-names "$cert" "reach=GeneralNames"
  add_der "$work/rsa.der" cert leaf-rsa "$cert" "$leaf"
  add_der "$work/sha1.der" cert leaf-rsa-sha1 "$cert" "$leaf"
  add_der "$work/ec.der" cert leaf-ec "$cert" "reach=KeyUsage,GeneralNames opaque=1.2.840.10045.2.1"
  add_der "$work/dsa.der" cert leaf-dsa "$cert" "$leaf,Dss_Parms"
  add_der "$work/ed25519.der" cert leaf-ed25519 "$cert" "$leaf"
  add_der "$work/rsapss.der" cert leaf-rsapss "$cert" "$leaf opaque=1.2.840.113549.1.1.10"
  add_der "$work/ocsp.der" cert ocsp-responder "$cert" \
    "reach=_extKeyUsage_ExtnType opaque=1.3.6.1.5.5.7.48.1.5"
  add_der "$work/tsa.der" cert tsa "$cert" "reach=_extKeyUsage_ExtnType"
  add_der "$work/attrs.der" cert subject-attributes "$cert" "$leaf,$(csv \
    CaseIgnoreIA5StringSyntax _title_Type _surname_Type _givenName_Type _initials_Type \
    _generationQualifier_Type _x520Pseudonym_Type _localityName_Type \
    _stateOrProvinceName_Type _organizationalUnitName_Type PHGString)"
  add_der "$work/v1.der" cert version1 "$cert" "reach=NULLParams"
  add_der "$work/dsa-self.der" cert dsa-sha1-self-signed "$cert" "reach=Dss_Parms"
}

# ------------------------------------------------------------------------ CRLs

# An index line of "openssl ca": status, expiry, revocation (with reason and extra), serial,
# file, subject. Written directly, so that revocation times are fixed.
revoked_line() {
  printf 'R\t%s\t%s\t%s\tunknown\t%s\n' "$end" "$1" "$2" "$3"
}

write_sub_index() {
  {
    printf 'V\t%s\t\t1001\tunknown\t/C=DE/O=Example/CN=Full Leaf\n' "$end"
    revoked_line 250201000000Z 2001 "/C=DE/O=Example/CN=Revoked Plain"
    revoked_line 250202000000Z,keyTime,20250115000000Z 2002 "/C=DE/O=Example/CN=Compromised"
    revoked_line 250203000000Z,holdInstruction,holdInstructionReject 2003 "/C=DE/O=Example/CN=On Hold"
    revoked_line 250204000000Z,superseded 2004 "/C=DE/O=Example/CN=Superseded"
    revoked_line 250205000000Z,CAkeyTime,20250116000000Z 2005 "/C=DE/O=Example/CN=CA Compromised"
    revoked_line 250206000000Z,cessationOfOperation 2006 "/C=DE/O=Example/CN=Ceased"
  } >"$work/sub/index.txt"
}

# gen_crl CA EXTENSIONS OUT: a CRL of the CA's index with fixed update times.
gen_crl() {
  ossl ca -gencrl -batch -config "$work/ca.cnf" -name "$1" -crlexts "$2" \
    -crl_lastupdate "$crl_this" -crl_nextupdate "$crl_next" -out "$3.pem"
  ossl crl -in "$3.pem" -outform DER -out "$3.der"
}

make_crls() {
  local crl="PKIX1Explicit88.CertificateList"
  write_sub_index
  gen_crl sub crl_ext "$work/crl-full"
  gen_crl sub crl_delta "$work/crl-delta"
  : >"$work/root/index.txt"
  ossl ca -gencrl -batch -config "$work/ca.cnf" -name root -crl_lastupdate "$crl_this" \
    -crl_nextupdate "$crl_next" -out "$work/crl-empty.pem"
  ossl crl -in "$work/crl-empty.pem" -outform DER -out "$work/crl-empty.der"
  add_der "$work/crl-full.der" crl entries-and-idp "$crl" \
    "reach=$(csv CRLReason HoldInstruction InvalidityDate CRLNumber IssuingDistPointSyntax \
      AuthorityKeyIdentifier)"
  add_der "$work/crl-delta.der" crl delta "$crl" "reach=BaseCRLNumber,CRLNumber,IssuingDistPointSyntax"
  add_pem "$work/crl-delta.pem" crl delta
  add_der "$work/crl-empty.der" crl no-entries "$crl" "reach=CRLNumber"
}

# A CRL of $large_crl_entries entries, every tenth with a reason, into DIR/crl-large.der.
make_large_crl() {
  local dir=$1 i
  write_ca_config
  make_cas
  for ((i = 1; i <= large_crl_entries; i++)); do
    if ((i % 10 == 0)); then
      revoked_line 250301000000Z,keyCompromise "$(printf '%06X' "$i")" "/CN=Entry $i"
    else
      revoked_line 250301000000Z "$(printf '%06X' "$i")" "/CN=Entry $i"
    fi
  done >"$work/sub/index.txt"
  gen_crl sub crl_ext "$work/crl-large"
  validate "$work/crl-large.der"
  mkdir -p "$dir"
  cp "$work/crl-large.der" "$dir/crl-large.der"
}

# ------------------------------------------------------------------------ CMS and PKCS #7

# cms_make NAME OPENSSL-CMS-ARGS...: a DER ContentInfo into $work/cms-NAME.der.
cms_make() {
  local name=$1
  shift
  ossl cms "$@" -in "$work/msg.txt" -outform DER -out "$work/cms-$name.der"
}

make_cms() {
  local ci="CryptographicMessageSyntax.ContentInfo"
  local rsa_signer=(-signer "$work/rsa.pem" -inkey "$(key_file leaf-rsa)")
  printf 'A message of the corpus, signed, enveloped and digested by openssl.\n' >"$work/msg.txt"
  cat "$work/sub.pem" "$work/root.pem" >"$work/chain.pem"
  # Every signed message carries data as its encapsulated content type, which the set of
  # encapsulated content types does not list, so the content itself stays octets.
  local data_oid=1.2.840.113549.1.7.1

  cms_make signed-attached -sign -nodetach -md sha256 "${rsa_signer[@]}" \
    -certfile "$work/chain.pem"
  cms_make signed-detached -sign -md sha256 -keyid -nocerts "${rsa_signer[@]}"
  cms_make signed-noattr -sign -nodetach -noattr -signer "$work/ec.pem" \
    -inkey "$(key_file leaf-ec)"
  # openssl 3.0 cannot sign CMS with Ed25519, so the second signer is the EC key.
  cms_make signed-two-signers -sign -nodetach -md sha384 "${rsa_signer[@]}" \
    -signer "$work/ec.pem" -inkey "$(key_file leaf-ec)"
  cms_make signed-pss -sign -nodetach "${rsa_signer[@]}" -keyopt rsa_padding_mode:pss
  cms_make signed-dsa-sha1 -sign -nodetach -md sha1 -signer "$work/dsa.pem" \
    -inkey "$(key_file leaf-dsa)"
  cms_make signed-receipt-request -sign -nodetach "${rsa_signer[@]}" -receipt_request_all \
    -receipt_request_to receipts@example.test
  cms_make enveloped-ktri -encrypt -aes256 -recip "$work/rsa.pem"
  cms_make enveloped-kari -encrypt -aes128 -recip "$work/ec.pem"
  cms_make enveloped-kek -encrypt -aes128 -secretkey 000102030405060708090A0B0C0D0E0F \
    -secretkeyid C0FFEE
  cms_make enveloped-pwri -encrypt -aes128 -pwri_password corpus-password
  cms_make enveloped-two-recipients -encrypt -aes256 -recip "$work/rsa.pem" \
    -recip "$work/ec.pem"
  cms_make digested -digest_create -md sha256
  cms_make digested-sha1 -digest_create -md sha1
  cms_make encrypted -EncryptedData_encrypt -aes128 -secretkey 000102030405060708090A0B0C0D0E0F
  cms_make data -data_create
  cms_make auth-enveloped -encrypt -aes-256-gcm -recip "$work/rsa.pem"
  # Streaming writes indefinite lengths: BER, which re-encodes to the DER that openssl makes
  # of the same message (its twin, *.der beside the *.ber).
  cms_make signed-streamed -sign -nodetach -stream "${rsa_signer[@]}"
  ossl cms -cmsout -inform DER -in "$work/cms-signed-streamed.der" -outform DER \
    -out "$work/cms-signed-streamed-der.der"
  # PKCS #7 of the older tools: S/MIME signing and encryption, and a certificates-only message.
  ossl smime -sign -nodetach -in "$work/msg.txt" -signer "$work/rsa.pem" \
    -inkey "$(key_file leaf-rsa)" -outform DER -out "$work/cms-pkcs7-signed.der"
  ossl smime -encrypt -aes128 -in "$work/msg.txt" -outform DER \
    -out "$work/cms-pkcs7-enveloped.der" "$work/rsa.pem"
  # PKCS #7 keeps its certificates in the order given, which DER's order of a SET OF (by
  # encoding) puts the shorter root first: given the other way round the message is BER only.
  ossl crl2pkcs7 -in "$work/crl-full.pem" -certfile "$work/root.pem" -certfile "$work/sub.pem" \
    -outform DER -out "$work/cms-pkcs7-certs-crl.der"
  ossl crl2pkcs7 -in "$work/crl-full.pem" -certfile "$work/sub.pem" -certfile "$work/root.pem" \
    -outform DER -out "$work/cms-pkcs7-certs-crl-unsorted.der"
  to_pem CMS "$work/cms-signed-attached.der" "$work/cms-signed-attached.pem"

  local signed="reach=SignedData,ContentTypeIdentifier,_messageDigest_Type,Time"
  add_der "$work/cms-signed-attached.der" cms signed-attached "$ci" \
    "$signed,BasicConstraintsSyntax,NameConstraintsSyntax opaque=$data_oid,1.2.840.113549.1.9.15"
  add_pem "$work/cms-signed-attached.pem" cms signed-attached
  add_der "$work/cms-signed-detached.der" cms signed-detached "$ci" "$signed"
  add_der "$work/cms-signed-noattr.der" cms signed-noattr "$ci" "reach=SignedData opaque=$data_oid"
  add_der "$work/cms-signed-two-signers.der" cms signed-two-signers "$ci" \
    "$signed opaque=$data_oid"
  add_der "$work/cms-signed-pss.der" cms signed-pss "$ci" \
    "$signed opaque=$data_oid,1.2.840.113549.1.1.10"
  add_der "$work/cms-signed-dsa-sha1.der" cms signed-dsa-sha1 "$ci" "$signed,Dss_Parms opaque=$data_oid"
  add_der "$work/cms-signed-receipt-request.der" cms signed-receipt-request "$ci" \
    "$signed opaque=$data_oid,1.2.840.113549.1.9.16.2.1"
  add_der "$work/cms-enveloped-ktri.der" cms enveloped-ktri "$ci" \
    "reach=EnvelopedData,NULLParams opaque=2.16.840.1.101.3.4.1.42"
  add_der "$work/cms-enveloped-kari.der" cms enveloped-kari "$ci" "reach=EnvelopedData"
  add_der "$work/cms-enveloped-kek.der" cms enveloped-kek "$ci" "reach=EnvelopedData"
  # The CMS module's RecipientInfo has no password alternative ([3]).
  add_der "$work/cms-enveloped-pwri.der" cms enveloped-pwri "$ci" "refused=-11"
  add_der "$work/cms-enveloped-two-recipients.der" cms enveloped-two-recipients "$ci" \
    "reach=EnvelopedData,NULLParams"
  add_der "$work/cms-digested.der" cms digested "$ci" "reach=DigestedData"
  add_der "$work/cms-digested-sha1.der" cms digested-sha1 "$ci" "reach=DigestedData"
  add_der "$work/cms-encrypted.der" cms encrypted "$ci" "reach=EncryptedData"
  add_der "$work/cms-data.der" cms data "$ci" "reach=_simpleData_Type"
  add_der "$work/cms-auth-enveloped.der" cms auth-enveloped "$ci" \
    "opaque=1.2.840.113549.1.9.16.1.23"
  add_der "$work/cms-signed-streamed-der.der" cms signed-streamed "$ci" "$signed opaque=$data_oid"
  add_ber "$work/cms-signed-streamed.der" cms signed-streamed
  add_der "$work/cms-pkcs7-signed.der" cms pkcs7-signed "$ci" "$signed opaque=$data_oid"
  add_der "$work/cms-pkcs7-enveloped.der" cms pkcs7-enveloped "$ci" "reach=EnvelopedData,NULLParams"
  add_der "$work/cms-pkcs7-certs-crl.der" cms pkcs7-certs-crl "$ci" \
    "reach=SignedData,CRLReason,InvalidityDate,NameConstraintsSyntax"
  add_ber "$work/cms-pkcs7-certs-crl-unsorted.der" cms pkcs7-certs-crl
}

# ------------------------------------------------------------------------ OCSP

# ocsp_respond REQUEST OUT [options]: the sub CA's responder answering from its index.
ocsp_respond() {
  local req=$1 out=$2
  shift 2
  ossl ocsp -index "$work/sub/index.txt" -CA "$work/sub.pem" -rsigner "$work/ocsp.pem" \
    -rkey "$(key_file ocsp-rsa)" -ndays 7 -reqin "$req" -respout "$out" "$@"
}

# A response of status only, written by openssl's own DER generator: the responder of the
# command line makes no error status but malformedRequest.
ocsp_status_only() {
  printf 'asn1 = SEQUENCE:response\n[response]\nstatus = ENUMERATED:%d\n' "$1" >"$work/status.cnf"
  ossl asn1parse -genconf "$work/status.cnf" -out "$2" -noout
}

make_ocsp() {
  local oreq="PKIXOCSP.OCSPRequest" oresp="PKIXOCSP.OCSPResponse" nonce=1.3.6.1.5.5.7.48.1.2
  # 1001 is valid, 2002 revoked for key compromise, 2003 on hold, 9999 unknown to the index.
  ossl ocsp -issuer "$work/sub.pem" -serial 0x1001 -serial 0x2002 -serial 0x2003 \
    -serial 0x9999 -reqout "$work/ocsp-req-nonce.der"
  ossl ocsp -issuer "$work/sub.pem" -sha256 -cert "$work/rsa.pem" -no_nonce \
    -reqout "$work/ocsp-req-sha256.der"
  ossl ocsp -issuer "$work/sub.pem" -cert "$work/rsa.pem" -cert "$work/ec.pem" \
    -signer "$work/rsa.pem" -signkey "$(key_file leaf-rsa)" -sign_other "$work/chain.pem" \
    -reqout "$work/ocsp-req-signed.der"
  # A request without entries, for the malformedRequest answer.
  printf '\x30\x04\x30\x02\x30\x00' >"$work/ocsp-req-empty.der"

  ocsp_respond "$work/ocsp-req-nonce.der" "$work/ocsp-resp-mixed.der"
  ocsp_respond "$work/ocsp-req-sha256.der" "$work/ocsp-resp-keyid.der" -resp_key_id \
    -resp_no_certs
  ocsp_respond "$work/ocsp-req-signed.der" "$work/ocsp-resp-sha256.der" -rmd sha256
  # The responder reports the malformed request by its exit status too, after writing it.
  openssl ocsp -index "$work/sub/index.txt" -CA "$work/sub.pem" -rsigner "$work/ocsp.pem" \
    -rkey "$(key_file ocsp-rsa)" -reqin "$work/ocsp-req-empty.der" \
    -respout "$work/ocsp-resp-malformed.der" >>"$work/openssl.log" 2>&1 || true
  ocsp_status_only 3 "$work/ocsp-resp-try-later.der"
  ocsp_status_only 6 "$work/ocsp-resp-unauthorized.der"

  add_der "$work/ocsp-req-nonce.der" ocsp request-four-ids-nonce "$oreq" "opaque=$nonce"
  add_der "$work/ocsp-req-sha256.der" ocsp request-sha256-id "$oreq"
  add_der "$work/ocsp-req-signed.der" ocsp request-signed "$oreq" \
    "reach=NULLParams,BasicConstraintsSyntax opaque=$nonce,1.2.840.113549.1.1.11"
  add_der "$work/ocsp-resp-mixed.der" ocsp response-good-revoked-hold-unknown "$oresp" \
    "reach=BasicOCSPResponse,HoldInstruction,InvalidityDate,_extKeyUsage_ExtnType opaque=$nonce"
  add_der "$work/ocsp-resp-keyid.der" ocsp response-by-key-no-certs "$oresp" "reach=BasicOCSPResponse"
  add_der "$work/ocsp-resp-sha256.der" ocsp response-sha256 "$oresp" "reach=BasicOCSPResponse"
  add_der "$work/ocsp-resp-malformed.der" ocsp response-malformed-request "$oresp"
  add_der "$work/ocsp-resp-try-later.der" ocsp response-try-later "$oresp"
  add_der "$work/ocsp-resp-unauthorized.der" ocsp response-unauthorized "$oresp"
}

# ------------------------------------------------------------------------ time stamping

write_tsa_config() {
  echo 01 >"$work/tsaserial"
  cat >"$work/tsa.cnf" <<EOF2
[ tsa ]
default_tsa = full

# No further certificates: openssl puts the signer's first and the others after it unsorted,
# which is not DER when the signer's encoding does not sort first.
[ full ]
serial = $work/tsaserial
crypto_device = builtin
signer_cert = $work/tsa.pem
signer_key = $(key_file tsa-rsa)
signer_digest = sha256
default_policy = 1.3.6.1.4.1.55555.5.1
other_policies = 1.3.6.1.4.1.55555.5.2
digests = sha1, sha256, sha384, sha512
accuracy = secs:1, millisecs:500, microsecs:100
clock_precision_digits = 3
ordering = yes
tsa_name = yes
ess_cert_id_alg = sha256

# The oldest form: signingCertificate with SHA-1 identifiers, no accuracy, no name.
[ plain ]
serial = $work/tsaserial
crypto_device = builtin
signer_cert = $work/tsa.pem
signer_key = $(key_file tsa-rsa)
signer_digest = sha1
default_policy = 1.3.6.1.4.1.55555.5.1
other_policies = 1.3.6.1.4.1.55555.5.2
digests = sha1, sha256
ess_cert_id_alg = sha1
EOF2
}

# ts_reply QUERY OUT SECTION [options]
ts_reply() {
  local query=$1 out=$2 section=$3
  shift 3
  ossl ts -reply -config "$work/tsa.cnf" -section "$section" -queryfile "$query" -out "$out" "$@"
}

make_tsp() {
  local treq="PKIXTSP.TimeStampReq" tresp="PKIXTSP.TimeStampResp"
  local token="reach=SignedData,TSTInfo,ContentTypeIdentifier,_messageDigest_Type"
  write_tsa_config
  ossl ts -query -data "$work/msg.txt" -sha256 -cert -out "$work/ts-query-nonce-cert.der"
  ossl ts -query -data "$work/msg.txt" -sha1 -no_nonce -tspolicy 1.3.6.1.4.1.55555.5.2 \
    -out "$work/ts-query-sha1-policy.der"
  ossl ts -query -data "$work/msg.txt" -sha256 -tspolicy 1.3.6.1.4.1.55555.5.9 \
    -out "$work/ts-query-unknown-policy.der"
  ts_reply "$work/ts-query-nonce-cert.der" "$work/ts-reply-full.der" full
  ts_reply "$work/ts-query-sha1-policy.der" "$work/ts-reply-plain.der" plain
  ts_reply "$work/ts-query-unknown-policy.der" "$work/ts-reply-rejected.der" full
  ts_reply "$work/ts-query-nonce-cert.der" "$work/ts-token.der" full -token_out

  add_der "$work/ts-query-nonce-cert.der" tsp query-nonce-cert "$treq"
  add_der "$work/ts-query-sha1-policy.der" tsp query-sha1-policy "$treq" "reach=NULLParams"
  add_der "$work/ts-reply-full.der" tsp reply-certs-accuracy-nonce "$tresp" \
    "$token,SigningCertificateV2"
  add_der "$work/ts-reply-plain.der" tsp reply-no-certs "$tresp" "$token,SigningCertificate"
  # Its failInfo names unacceptedPolicy (bit 15); the CMP module's PKIFailureInfo, which the
  # time-stamp module uses, names bits 0 to 9 only.
  add_der "$work/ts-reply-rejected.der" tsp reply-rejected "$tresp" "refused=-17"
  add_der "$work/ts-token.der" tsp token "CryptographicMessageSyntax.ContentInfo" \
    "$token,SigningCertificateV2"
}

# ------------------------------------------------------------------------ CMP

# Runs openssl for a message that the client itself refuses after recording it.
ossl_refused() {
  openssl "$@" >>"$work/openssl.log" 2>&1 && fail "openssl $1 accepted what it should refuse"
  return 0
}

# cmp_exchange RUNNER NAME [options]: one transaction against openssl's in-process mock
# server, recording the requests as cmp-NAME-req<i>.der and the responses as
# cmp-NAME-rsp<i>.der. RUNNER is ossl, or ossl_refused for negative answers.
cmp_exchange() {
  local run=$1 name=$2
  shift 2
  "$run" cmp -use_mock_srv -srv_cert "$work/cmpsrv.pem" -srv_key "$(key_file cmp-rsa)" \
    -srv_trusted "$work/root.pem" -srv_untrusted "$work/sub.pem" -rsp_cert "$work/ec.pem" \
    -rsp_extracerts "$work/sub.pem" -rsp_capubs "$work/root.pem" \
    -reqout "$work/cmp-$name-req1.der,$work/cmp-$name-req2.der" \
    -rspout "$work/cmp-$name-rsp1.der,$work/cmp-$name-rsp2.der" "$@"
}

make_cmp() {
  local msg="PKIXCMP.PKIMessage"
  local signed=(-cert "$work/rsa.pem" -key "$(key_file leaf-rsa)" -srvcert "$work/cmpsrv.pem"
                -extracerts "$work/sub.pem")
  local newkey=(-newkey "$(key_file leaf-ec)" -subject "/C=DE/O=Example/CN=CMP Client"
                -certout "$work/cmp-out.pem")
  # Protected by a password-based MAC, with certificate confirmation and its answer.
  cmp_exchange ossl ir -cmd ir -ref client-ref -secret pass:corpus-secret -srv_ref server-ref \
    -srv_secret pass:corpus-secret -recipient "/C=DE/O=Example/CN=Corpus CMP Server" \
    "${newkey[@]}" -sans "DNS:cmp.example.test,IP:10.0.0.1" -policy_oids 1.3.6.1.4.1.55555.2.1
  # The rest signed, with extra certificates.
  cmp_exchange ossl cr -cmd cr "${signed[@]}" "${newkey[@]}" -implicit_confirm -grant_implicitconf
  cmp_exchange ossl kur -cmd kur "${signed[@]}" "${newkey[@]}" -oldcert "$work/ec.pem" \
    -disable_confirm
  ossl req -new -config "$work/ca.cnf" -key "$(key_file leaf-ec)" -subj "/C=DE/CN=P10 via CMP" \
    -out "$work/cmp-p10.pem"
  cmp_exchange ossl p10cr -cmd p10cr "${signed[@]}" -csr "$work/cmp-p10.pem" \
    -certout "$work/cmp-out.pem" -disable_confirm
  cmp_exchange ossl rr -cmd rr "${signed[@]}" -oldcert "$work/ec.pem" -revreason 1
  cmp_exchange ossl genm -cmd genm "${signed[@]}" -infotype signKeyPairTypes
  # Negative answers: an error message, and a rejection inside a certificate response.
  cmp_exchange ossl_refused error -cmd cr "${signed[@]}" "${newkey[@]}" -send_error
  cmp_exchange ossl_refused rejected -cmd cr "${signed[@]}" "${newkey[@]}" -pkistatus 2 \
    -failurebits 5 -statusstring "refused by policy"

  local ext="reach=BasicConstraintsSyntax,NameConstraintsSyntax"
  add_der "$work/cmp-ir-req1.der" cmp ir-pbm "$msg" "reach=GeneralNames,CertificatePoliciesSyntax"
  add_der "$work/cmp-ir-rsp1.der" cmp ip-pbm "$msg" "reach=BasicConstraintsSyntax"
  # certConf ([24]) came after the PKIBody of the CMP module.
  add_der "$work/cmp-ir-req2.der" cmp certconf "$msg" "refused=-11"
  add_der "$work/cmp-ir-rsp2.der" cmp pkiconf "$msg"
  add_der "$work/cmp-cr-req1.der" cmp cr-signed "$msg" "$ext opaque=1.3.6.1.5.5.7.4.13"
  add_der "$work/cmp-cr-rsp1.der" cmp cp-signed "$msg" "$ext"
  add_der "$work/cmp-kur-req1.der" cmp kur "$msg" "$ext"
  add_der "$work/cmp-kur-rsp1.der" cmp kup "$msg" "$ext"
  add_der "$work/cmp-p10cr-req1.der" cmp p10cr "$msg" "$ext"
  add_der "$work/cmp-p10cr-rsp1.der" cmp p10cp "$msg" "$ext"
  add_der "$work/cmp-rr-req1.der" cmp rr "$msg" "$ext,CRLReason"
  add_der "$work/cmp-rr-rsp1.der" cmp rp "$msg" "$ext"
  add_der "$work/cmp-genm-req1.der" cmp genm "$msg" "$ext"
  add_der "$work/cmp-genm-rsp1.der" cmp genp "$msg" "$ext"
  add_der "$work/cmp-error-rsp1.der" cmp error "$msg" "$ext"
  add_der "$work/cmp-rejected-rsp1.der" cmp cp-rejected "$msg" "$ext"
}

# ------------------------------------------------------------------------ PKCS #10

make_requests() {
  local p10="PKIXCMP.CertificationRequest"
  cat >"$work/req.cnf" <<EOF2
[ req ]
distinguished_name = dn
attributes = attrs
req_extensions = exts
prompt = no
utf8 = yes
string_mask = utf8only

[ dn ]
C = DE
O = Example
CN = Request With Attributes
emailAddress = request@example.test

[ attrs ]
challengePassword = a challenge password
unstructuredName = an unstructured name

[ exts ]
basicConstraints = CA:FALSE
keyUsage = digitalSignature, keyEncipherment
extendedKeyUsage = clientAuth
subjectAltName = DNS:request.example.test, email:request@example.test, IP:10.1.2.3
1.3.6.1.4.1.55555.1.2 = ASN1:UTF8String:private request extension
EOF2
  ossl req -new -config "$work/req.cnf" -key "$(key_file leaf-rsa)" -outform DER \
    -out "$work/p10-attributes.der"
  ossl req -new -config "$work/req.cnf" -key "$(key_file leaf-ec)" -outform DER \
    -out "$work/p10-ec.der"
  ossl req -new -config "$work/ca.cnf" -key "$(key_file leaf-ed25519)" -subj "/CN=Ed25519 Request" \
    -outform DER -out "$work/p10-ed25519.der"
  ossl req -new -config "$work/ca.cnf" -key "$(key_file leaf-dsa)" -subj "/CN=DSA Request" \
    -addext "subjectAltName=DNS:dsa.example.test" -outform DER -out "$work/p10-dsa.der"
  ossl req -in "$work/p10-attributes.der" -inform DER -outform PEM -out "$work/p10-attributes.pem"

  # challengePassword and unstructuredName are no members of the attribute set.
  local attrs="opaque=1.2.840.113549.1.9.7,1.2.840.113549.1.9.2,1.3.6.1.4.1.55555.1.2"
  add_der "$work/p10-attributes.der" pkcs10 rsa-attributes "$p10" \
    "reach=$(csv Extensions BasicConstraintsSyntax KeyUsage _extKeyUsage_ExtnType GeneralNames \
      NULLParams) $attrs"
  add_pem "$work/p10-attributes.pem" pkcs10 rsa-attributes
  add_der "$work/p10-ec.der" pkcs10 ec-attributes "$p10" "reach=Extensions,GeneralNames $attrs"
  add_der "$work/p10-ed25519.der" pkcs10 ed25519 "$p10"
  add_der "$work/p10-dsa.der" pkcs10 dsa "$p10" "reach=Extensions,GeneralNames,Dss_Parms"
}

# ------------------------------------------------------------------------ GOST

gost_available() {
  openssl engine gost >/dev/null 2>&1
}

make_gost_keys() {
  make_key gost2012-256-ca -engine gost -algorithm gost2012_256 -pkeyopt paramset:A
  make_key gost2001 -engine gost -algorithm gost2001 -pkeyopt paramset:A
  make_key gost2001-xch -engine gost -algorithm gost2001 -pkeyopt paramset:XA
  make_key gost2012-512 -engine gost -algorithm gost2012_512 -pkeyopt paramset:A
}

write_gost_ca_config() {
  init_ca_dir gost 5001 01
  cat >>"$work/ca.cnf" <<EOF2

[ gost ]
dir = $work/gost
database = \$dir/index.txt
new_certs_dir = \$dir/new
serial = \$dir/serial
crlnumber = \$dir/crlnumber
certificate = $work/gost-ca.pem
private_key = $(key_file gost2012-256-ca)
default_md = md_gost12_256
policy = any
unique_subject = no
copy_extensions = none
utf8 = yes
string_mask = utf8only
EOF2
}

# gost_sign KEY SUBJECT OUT [more ca options]: a certificate from the GOST CA.
gost_sign() {
  local key=$1 subject=$2 out=$3
  shift 3
  ossl req -engine gost -new -config "$work/ca.cnf" -key "$key" -subj "$subject" \
    -out "$work/req.pem"
  ossl ca -engine gost -batch -notext -config "$work/ca.cnf" -name gost -in "$work/req.pem" \
    -startdate "$start" -enddate "$end" -extensions v3_leaf -preserveDN -out "$out.pem" "$@"
  ossl x509 -engine gost -in "$out.pem" -outform DER -out "$out.der"
}

make_gost() {
  local cert="PKIX1Explicit88.Certificate" ci="CryptographicMessageSyntax.ContentInfo"
  make_gost_keys
  write_gost_ca_config
  ossl req -engine gost -new -config "$work/ca.cnf" -key "$(key_file gost2012-256-ca)" \
    -subj "/C=RU/O=Example/CN=Corpus GOST CA" -out "$work/req.pem"
  ossl ca -engine gost -batch -notext -selfsign -config "$work/ca.cnf" -name gost \
    -in "$work/req.pem" -keyfile "$(key_file gost2012-256-ca)" -startdate "$start" \
    -enddate "$end" -extensions v3_root -out "$work/gost-ca.pem"
  ossl x509 -engine gost -in "$work/gost-ca.pem" -outform DER -out "$work/gost-ca.der"
  gost_sign "$(key_file gost2001)" \
    "/C=RU/O=Example/CN=GOST 2001 Leaf/emailAddress=gost@example.test" "$work/gost2001"
  gost_sign "$(key_file gost2001-xch)" "/C=RU/O=Example/CN=GOST 2001 Exchange" "$work/gost2001-xch"
  gost_sign "$(key_file gost2012-512)" "/C=RU/O=Example/CN=GOST 2012 512 Leaf" \
    "$work/gost2012-512"
  # A 2001 key signing with the GOST R 34.11-94 digest: the pair the algorithm sets know.
  ossl req -engine gost -new -x509 -config "$work/ca.cnf" -key "$(key_file gost2001)" \
    -md_gost94 -set_serial 94 -days 3650 -subj "/C=RU/O=Example/CN=GOST 2001 Self-Signed" \
    -extensions v3_root -out "$work/gost2001-self.pem"
  ossl x509 -engine gost -in "$work/gost2001-self.pem" -outform DER -out "$work/gost2001-self.der"

  ossl cms -engine gost -sign -nodetach -md md_gost94 -signer "$work/gost2001-self.pem" \
    -inkey "$(key_file gost2001)" -in "$work/msg.txt" -outform DER \
    -out "$work/gost-cms-signed-2001.der"
  ossl cms -engine gost -sign -nodetach -md md_gost12_256 -signer "$work/gost-ca.pem" \
    -inkey "$(key_file gost2012-256-ca)" -certfile "$work/gost2001.pem" -in "$work/msg.txt" \
    -outform DER -out "$work/gost-cms-signed-2012.der"
  ossl cms -engine gost -encrypt -gost89 -recip "$work/gost2001-xch.pem" -in "$work/msg.txt" \
    -outform DER -out "$work/gost-cms-enveloped.der"

  # GOST 2001 keys and their parameters are members of the algorithm set; the 2012 ones are
  # not, and stay octets.
  local g2001="reach=_gost2001PubKey_Type" g2012=1.2.643.7.1.1.1.1
  add_der "$work/gost-ca.der" gost ca-2012-256 "$cert" "opaque=$g2012"
  add_der "$work/gost2001.der" gost leaf-2001 "$cert" "$g2001"
  add_der "$work/gost2001-xch.der" gost leaf-2001-exchange "$cert" "$g2001"
  add_der "$work/gost2012-512.der" gost leaf-2012-512 "$cert" "opaque=1.2.643.7.1.1.1.2"
  add_der "$work/gost2001-self.der" gost self-signed-2001-gost94 "$cert" "$g2001,NULLParams"
  # Its signer's signature algorithm is id-GostR3410-2001 with NULL parameters, which the
  # algorithm set reads as public key parameters (a SEQUENCE).
  add_der "$work/gost-cms-signed-2001.der" gost cms-signed-2001 "$ci" "refused=-3"
  add_der "$work/gost-cms-signed-2012.der" gost cms-signed-2012 "$ci" "$g2001,SignedData"
  add_der "$work/gost-cms-enveloped.der" gost cms-enveloped-2001 "$ci" \
    "reach=EnvelopedData,_gost2001PubKey_Type,Gost28147_89_Parameters"
}

# ------------------------------------------------------------------------ main

usage() {
  echo "usage: $0 [--large-crl DIR]" >&2
  exit 2
}

# Without the GOST engine the committed GOST files and their manifest lines are kept.
keep_gost_entries() {
  log "no GOST engine for openssl (libengine-gost-openssl): keeping the committed GOST files"
  [ -f "$data/MANIFEST" ] || return 0
  local line
  while IFS= read -r line; do
    manifest_lines+=("$line")
  done < <(grep '^gost/' "$data/MANIFEST" || true)
}

main() {
  case "${1:-}" in
    --large-crl)
      [ $# -eq 2 ] || usage
      make_large_crl "$2"
      return ;;
    "") ;;
    *) usage ;;
  esac
  make_keys
  write_ca_config
  make_cas
  (cd "$data" && rm -rf cert crl cms ocsp tsp cmp pkcs10)
  make_certificates
  make_crls
  make_cms
  make_ocsp
  make_tsp
  make_cmp
  make_requests
  if gost_available; then
    rm -rf "$data/gost"
    make_gost
  else
    keep_gost_entries
  fi
  write_manifest
  # The certificate of the README's first command.
  mkdir -p "$data/../../examples/data"
  cp "$data/cert/full-extensions.der" "$data/../../examples/data/example-cert.der"
  local files bytes
  files=$(grep -vc "^#" "$data/MANIFEST")
  bytes=$(find "$data" -type f -printf "%s\n" | awk '{s += $1} END {print s}')
  log "$files files, $bytes bytes under tests/data"
}

main "$@"
