#!/usr/bin/env bash
# An attacker on the local network, inside the namespace in-netns.sh makes: a server announced
# by DNS-SD at priority 900 offers an unsigned catalogue dated 2099-12-31, while the publisher's
# signed update (20170201) is on the Internet endpoint. The app must take the publisher's update,
# keep the user's settings, install nothing of the rogue's, and not be pinned by its date: the
# next check still finds the Internet's catalogue, and a later update is still possible.
# Arguments: velmora-catalogue, velmora, make-test-catalogue.
set -euo pipefail
tool=$1 app=$2 maker=$3
work=$(mktemp -d)
trap 'kill $good $rogue 2>/dev/null; rm -rf "$work"' EXIT
home="$work/home"
mkdir -p "$work/good" "$work/rogue" "$home/Documents" "$home/Application Support/trusted-keys"
"$tool" keygen -o "$work/keys" >/dev/null
cp "$work/keys/velmora-signing.pub" "$home/Application Support/trusted-keys/publisher.pub"
printf '[General]\nProvince=3\nnotes_101=my note\n' > "$home/Application Support/UserDefaults.ini"
"$maker" 20 "$home/Documents/velmora-20170101.db" 20170101 >/dev/null
cp "$home/Documents/velmora-20170101.db" "$work/old.db"
"$maker" 20 "$work/new.db" 20170201 >/dev/null
"$maker" 20 "$work/forged.db" 20991231 >/dev/null
"$tool" publish "$work/new.db" "$work/old.db" --to "$work/good" --base-url http://127.0.0.1:8798 \
  --key "$work/keys/velmora-signing.key" >/dev/null
"$tool" publish "$work/forged.db" "$work/old.db" --to "$work/rogue" --base-url http://127.0.0.1:8797 >/dev/null
"$tool" serve "$work/good" --port 8798 > "$work/good.log" 2>&1 &
good=$!
"$tool" serve "$work/rogue" --port 8797 --name "Free updates" --priority 900 --advertise > "$work/rogue.log" 2>&1 &
rogue=$!
for _ in $(seq 50); do grep -q "serving" "$work/good.log" && grep -q "serving" "$work/rogue.log" && break; sleep 0.1; done

out=$(VELMORA_DISCOVERY_SECONDS=4 "$app" --home "$home" --update-now --update-url http://127.0.0.1:8798/ios/last.txt 2>"$work/err.log") || true
echo "$out"
check=$(VELMORA_DISCOVERY_SECONDS=4 "$app" --home "$home" --check-updates --update-url http://127.0.0.1:8798/ios/last.txt 2>>"$work/err.log") || true
echo "$check"
python3 - "$out" "$check" "$home" <<'PY'
import json, os, sys
update = json.loads(sys.argv[1].strip().splitlines()[-1])
check = json.loads(sys.argv[2])
home = sys.argv[3]
assert update["result"] in ("patched", "downloaded") and update["date"] == "2017-02-01", update
assert sorted(os.listdir(os.path.join(home, "Documents"))) == ["velmora-20170201.db"], os.listdir(os.path.join(home, "Documents"))
settings = open(os.path.join(home, "Application Support", "UserDefaults.ini")).read()
assert "Province=3" in settings and "my note" in settings, settings
assert check["newest_database_known"] in ("", "2017-02-01"), check
assert all(s["date"] != "2099-12-31" for s in check["sources"]), check["sources"]
PY
grep -q "Refused.*:8797" "$work/err.log" || { echo "the rogue server was never asked"; cat "$work/err.log"; exit 1; }
