#!/usr/bin/env bash
# A whole vote on a sample deck with no hardware: the keyboard is the keypad base.
# With a display the real windows open (vote with digit keys or "g", end with Space);
# without one the vote runs offscreen from a built-in operator script.
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
bin="$root/build/bin"
demo="$root/build/demo"
rm -rf "$demo"
mkdir -p "$demo"/{appdata/tallix,allusers,temp,runtime}
chmod 700 "$demo/runtime"

# Everything the demo touches stays inside build/demo.
export APPDATA="$demo/appdata" ALLUSERSPROFILE="$demo/allusers" temp="$demo/temp"
export XDG_RUNTIME_DIR="$demo/runtime" TALLIX_CONTROLLER_SOCKET="$demo/runtime/controller.sock"

cat > "$demo/appdata/tallix/tlx.ini" <<'INI'
[DEBUG]
LOGEVENTS TO FILE=1
INI
cat > "$demo/appdata/tallix/tlxctrl.ini" <<'INI'
[Controller]
MaxKeypads=40
[Base0]
Type=KBOARD
Low=1
High=40
INI
cat > "$demo/question.xml" <<'XML'
<tlxfile>
  <vote_info><vType>0</vType><options>4</options><startFrom>1</startFrom><Abstain>False</Abstain></vote_info>
  <graph_info><GraphType>9</GraphType><ShowGraphs>True</ShowGraphs><BarsPerPage>10</BarsPerPage></graph_info>
</tlxfile>
XML

deck="$demo/demo.pptx"
"$bin/tallix-deck" new "$deck" --slides 2 >/dev/null
"$bin/tallix-deck" question "$deck" 1 --settings "$demo/question.xml" \
    --answers "Coffee|Tea|Hot chocolate|Water" --title "What keeps you going through the afternoon?" >/dev/null

"$bin/tlxctrl" --log "$demo/controller.log" --idle-exit 120 &
controller=$!
trap '"$bin/tlxctrl" --quit >/dev/null 2>&1 || kill $controller 2>/dev/null || true' EXIT

args=(--deck "$deck")
if [ -z "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
    export QT_QPA_PLATFORM=offscreen
    printf '1 key g\n2.5 key Space\n5 key Space\n' > "$demo/operator.txt"
    args+=(--operator-script "$demo/operator.txt")
    echo "No display: running the vote offscreen (random votes, then Space)."
else
    echo "Vote with the digit keys 1-4 (each press is the next keypad), or g for random votes; Space ends the vote, then Space again closes the chart."
fi
"$bin/tallix-vote" "${args[@]}" TLXVOTE,1

echo
echo "Saved votes (TLXVOTES of slide 1):"
"$bin/tallix-deck" votes "$deck" 1
picture=$(unzip -Z1 "$deck" | grep -E '^ppt/media/' | tail -n 1 || true)
if [ -n "$picture" ]; then
    unzip -p "$deck" "$picture" > "$demo/chart.${picture##*.}"
    echo "Chart picture: $demo/chart.${picture##*.}"
fi
echo "Result deck:   $deck"

# The question slide as LibreOffice Impress draws it, with the chart picture on it.
if command -v soffice >/dev/null && command -v pdftoppm >/dev/null; then
    mkdir -p "$demo/home"
    if HOME="$demo/home" soffice -env:UserInstallation="file://$demo/office-profile" --headless --norestore \
            --convert-to pdf --outdir "$demo" "$deck" >/dev/null 2>&1 \
        && pdftoppm -png -r 96 -f 1 -l 1 -singlefile "$demo/demo.pdf" "$demo/slide"; then
        echo "Slide render:  $demo/slide.png"
    fi
fi
