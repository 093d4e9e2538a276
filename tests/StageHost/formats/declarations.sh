#!/usr/bin/env bash
# Compiles the declarations for editors: by themselves, with scripts of the repository, with calls that are right and with calls that are
# not. Leaves with 77 where there is no compiler.
#   declarations.sh STAGEHOST EXAMPLES TEMPLATES
set -euo pipefail
command -v tsc >/dev/null || exit 77
stagehost=$(realpath "$1")
examples=$(realpath "$2")
templates=$(realpath "$3")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
"$stagehost" declarations >calverin.d.ts
compile() { tsc --noEmit --lib es5 --target es5 --allowJs --checkJs "$@"; }

compile --strict calverin.d.ts
cp "$examples/driver/dimmer.js" "$examples/evening/doorman.js" "$templates/connection.js" .
for script in *.js; do compile calverin.d.ts "$script"; done

cat >right.ts <<'END'
const client = QCalverin.CreateSocket();
client.on("data", (bytes, from) => { from.write(bytes.left(2)); bytes[0] = bytes.length; });
client.on("error", (error) => QCalverin.TraceMessage(error.errorText, "ERROR"));
client.connect(80, "127.0.0.1", (connected) => connected.end());
const datagrams = QCalverin.CreateSocket("udp4");
datagrams.on("message", (bytes, from) => datagrams.send(bytes, 0, bytes.length, from.port, from.address));
const web = QCalverin.CreateHTTPClient();
web.on("response", (response) => QCalverin.SetValue("Code", response.statusCode));
web.post("http://127.0.0.1", "", new Buffer("x", "hex"));
QCalverin.OnVariableChange((name, value) => QCalverin.SetValue(name, value));
QCalverin.PerformAsync((text) => print(text), "a", "b", "LIST", "c=1");
const id: number = QCalverin.SetTimeout(() => {}, 10) + QCalverin.EnumStringToIndex(["a"], "a");
const root: string = new XMLDocument().DocumentElement().FirstChildElement("a").GetText();
const sum: Buffer = new Checksum().ComputeChecksum("x");
END
compile --strict calverin.d.ts right.ts

# Of lines on standard input each must be refused with some declarations; all are compiled at once, each in a file by itself.
wrong=0
refuses() {
    local line count=0 number
    while IFS= read -r line; do
        count=$((count + 1))
        printf '{ %s }\n' "$line" >"wrong$count.ts"
    done
    compile --strict "$1" wrong*.ts >refused || true
    for number in $(seq "$count"); do
        grep -q "^wrong$number.ts(" refused || { echo "is taken: $(cat "wrong$number.ts")"; exit 1; }
    done
    rm wrong*.ts
    wrong=$((wrong + count))
}
refuses calverin.d.ts <<'END'
QCalverin.SetVal("a", "b");
QCalverin.SetTimeout("text", 10);
QCalverin.SetTimeout(() => {});
QCalverin.CreateSocket().on("Data", () => {});
QCalverin.CreateSocket().on("message", () => {});
QCalverin.CreateSocket("udp4").send("text", 0, 4, 9000, "127.0.0.1");
QCalverin.CreateSocket().write(5);
QCalverin.CreateHTTPClient().on("response", (response) => response.body);
setTimeout(() => {}, 5);
new Buffer("x", "utf16");
END

# Those for counterparts, with each that the repository has, and with all members that their objects really have.
"$stagehost" declarations counterpart >counterpart.d.ts
compile --strict counterpart.d.ts
for script in "$examples"/*/fake-*.js "$templates"/{tcp,udp,http,serial}/fake.js; do compile counterpart.d.ts "$script"; done
cat >members.js <<'END'
var found = Counterpart.tcp({ name: "found" }), key;
for (key in found) note(key);
found.onOpen = function (c) { for (key in c) note(key); c.close(); };
for (key in Counterpart) note(key);
for (key in this) note(key);
note("that is all");
END
"$stagehost" counterpart members.js >members <<<''
grep -qx 'that is all' members
sed '/^that is all$/,$d' members | grep -v '^_' | while read -r member; do
    case $member in found|key|toString|gc|version) continue ;; esac # the engine's own, and the script's
    grep -qw "$member" counterpart.d.ts || { echo "is not declared: $member"; exit 1; }
done
refuses counterpart.d.ts <<'END'
Counterpart.tcp({ line: "\r" });
Counterpart.tcp({ lines: "\r" }).onFrame = (line, frame) => {};
Counterpart.tcp({ prefix: 3 });
Counterpart.udp().onLine = (line, text) => {};
Counterpart.udp().say(5);
Counterpart.serial({ port: 4001 });
Counterpart.tcp().misbehave("rude");
every("1000", () => {});
const level: string = option("level", 5);
END
echo "the declarations compile, and refuse $wrong calls that are wrong"
