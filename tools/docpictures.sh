#!/bin/sh
# docpictures.sh PROGRAM EXAMPLES OUT: draws the plots of the examples as the pictures of the documents.
# A tarninit.do sets the size of the pages.
set -e
program="$1"; examples="$2"; out="$3"
folder=$(mktemp -d)
trap 'rm -r "$folder"' EXIT
cd "$folder"
ln -s "$examples" examples
printf 'VIEWSIZE 5.6, 4.2\n' > tarninit.do
mkdir -p "$out"
for file in $(grep -l '^PLOT ' examples/*.do); do
  "$program" --batch "$file" > /dev/null
done
cp ./*.png "$out"
