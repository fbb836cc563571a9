#!/usr/bin/env bash
# make-package.sh ACTIONS_DLL VERSION PRODUCT_CODE PACKAGE: makes the server's Windows Installer package with wixl.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
version=$2
product_code=$3
package=$(realpath -m "$4")

work=$(mktemp -d) # wixl takes names without folders only
trap 'rm -rf "$work"' EXIT
cp "$here"/files/* "$work"
cp "$1" "$work/actions.dll"
cd "$work"
wixl -a x64 -D ProductCode="$product_code" -D UpgradeCode='{6F0B8F0C-7C5B-4D57-9F7E-0C8E2B1D4A60}' \
    -D ProductVersion="$version" -o "$package" "$here/orchard.wxs"

# wixl makes immediate actions of rollback and commit actions: 0x1 a DLL of the package, 0x400 deferred, 0x100 rollback,
# 0x200 commit, 0x800 with the rights of the system
msibuild "$package" -q "UPDATE CustomAction SET Type = $((0x1 + 0x400 + 0x100 + 0x800)) WHERE Action = 'RestoreServer'"
msibuild "$package" -q "UPDATE CustomAction SET Type = $((0x1 + 0x400 + 0x200 + 0x800)) WHERE Action = 'ForgetBackup'"

# what users may set, also where they confirm with an administrator's password
secure='WIX_DOWNGRADE_DETECTED;WIX_UPGRADE_DETECTED;INSTALLDIR;SERVERPORT;SITENAME;SITESFILE'
msibuild "$package" -q "UPDATE Property SET Value = '$secure' WHERE Property = 'SecureCustomProperties'"
