#!/bin/sh
# Renders the bitmaps of the resources from their SVG masters in icon-src. The bitmaps are committed, so a build needs
# none of this; run it after a change of a master. Needs rsvg-convert and ImageMagick.
set -eu
cd "$(dirname "$0")"

# render MASTER WIDTH HEIGHT TARGET
render() {
    rsvg-convert -w "$2" -h "$3" "icon-src/$1.svg" -o "$4"
}

# Icons of buttons are scaled by Qt from one large bitmap.
for name in play pause stop song capture pen eraser delete update NEW load; do
    render "$name" 96 96 "icon/$name.png"
done

# Pictures of labels and of the style sheet are shown pixel by pixel, so each has a twin for high-density screens.
for name in spaces zoomin zoomout; do
    render "$name" 24 24 "icon/$name.png"
    render "$name" 48 48 "icon/$name@2x.png"
done
for master in icon-src/style-*.svg; do
    name=$(basename "$master" .svg)
    render "$name" 12 12 "style/${name#style-}.png"
    render "$name" 24 24 "style/${name#style-}@2x.png"
done
for name in box-warning box-critical box-question box-information dir-back dir-forward dir-up dir-new dir-list dir-detail; do
    render "$name" 96 96 "style/$name.png"
done

for name in store_banner LOGO3; do
    render "$name" 720 256 "pic/pic/$name.png"
done

# The program's icon: the smallest sizes have a master of their own with fewer, bolder strokes.
for size in 16 22 24; do
    render appicon-small "$size" "$size" "desktop/glowsmith-$size.png"
done
for size in 32 48 64 128 256 512; do
    render appicon "$size" "$size" "desktop/glowsmith-$size.png"
done
cp icon-src/appicon.svg desktop/glowsmith.svg
convert desktop/glowsmith-16.png desktop/glowsmith-24.png desktop/glowsmith-32.png desktop/glowsmith-48.png \
    desktop/glowsmith-64.png desktop/glowsmith-256.png appicon.ico
