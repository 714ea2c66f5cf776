#!/bin/sh
# The translations beside the texts in the sources. A file NAME_LANGUAGE.ts is one program's or plug-in's in one language;
# an English one has nothing but the forms of numbers.
#   translations.sh update [LANGUAGE]   puts new texts into them, "unfinished", and takes out those that are gone; a
#                                       language that is named is begun
#   translations.sh check               status 1 where an update would change something, a text isn't finished or isn't
#                                       marked as one, or a translation hasn't the same %1 and %n as its text
# The page's are in web/text-LANGUAGE.js, by hand; they are checked with the others.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
work=$(mktemp -d "${TMPDIR:-/tmp}/orka-translations.XXXXXX")
trap 'rm -rf "$work"' EXIT

# Qt's reader of sources takes the separators in 1'000 for quotes.
cd "$root"
cp -r host sdk modules "$work"
find "$work" -name '*.cpp' -exec sed -i ":again; s/\([0-9]\)'\([0-9]\)/\1\2/; t again" {} +
cd "$work"
PATH=/usr/lib/qt5/bin:$root/build/tools/usr/lib/qt5/bin:$PATH

# update NAME FOLDER…: the files of that name, with the texts in these folders, in the order of their sources' names.
update() {
    name=$1
    shift
    find "$@" -name '*.cpp' | LC_ALL=C sort >sources
    for file in "$name"_*.ts; do
        case $file in *_en.ts) plurals=-pluralonly ;; *) plurals= ;; esac
        lupdate -silent -no-obsolete -locations none -source-language en $plurals \
            -tr-function-alias tr+=ORKA_TR,tr+=SDK_TR,tr+=mark -I host -I modules/upnpClient @sources -ts "$file" 2>&1 |
            grep -v 'lacks Q_OBJECT' || true
    done
}

# wrong_marks FILE: the texts whose translation has other marks. One form of a number may spell it out.
wrong_marks() {
    awk -v RS='</message>' -v file="$1" '
        function marks(text, pattern,    list, mark) {
            list = ""; gsub(/%L/, "%", text)
            while (match(text, pattern)) {
                mark = substr(text, RSTART, RLENGTH)
                if (!index(list, mark)) list = list mark
                text = substr(text, RSTART + RLENGTH)
            }
            return sorted(list)
        }
        function sorted(list,    i, all) {
            all = ""
            for (i = 1; i <= 9; i++) if (index(list, "%" i)) all = all "%" i
            return all (index(list, "n") ? "%n" : "")
        }
        /<source>/ {
            source = $0; sub(/.*<source>/, "", source); sub(/<\/source>.*/, "", source)
            whole = $0; sub(/.*<\/source>/, "", whole); sub(/.*<\/comment>/, "", whole)
            wrong = marks(source, "%[1-9n]") != marks(whole, "%[1-9n]")
            forms = split(whole, form, "<numerusform>")
            for (i = 2; i <= forms; i++) wrong = wrong || marks(source, "%[1-9]") != marks(form[i], "%[1-9]")
            if (wrong) { print file ": other marks than in \"" source "\""; failed = 1 }
        }
        END { exit failed }' "$1"
}

# unmarked: the sentences that are written in the program as if they weren't for people. Its page is English.
unmarked() {
    find host -name '*.cpp' ! -path 'host/web/*' -exec \
        grep -Pzo '\n[^\n]*QStringLiteral\(\s*"(%1|[A-Z][a-z]*) [a-z]+ [a-z][^"]*' {} + | tr '\0' '\n'
}

# page_texts: what the page says by itself.
page_texts() {
    grep -ohP "(?<![\\w.])tr\\('\\K[^']*" "$root"/web/*.js
    grep -oP '((aria-label|placeholder|description" content)="|class="skip"[^>]*>)\K[^"<]*' "$root/web/index.html"
}

# page_entries FILE: the texts that a translation of the page has, and of which words in braces aren't the same as its own.
page_entries() {
    sed -n "/texts = {/,/^};/s/^  '\(.*\)': '.*',\$/\1/p" "$1"
}
wrong_braces() {
    grep "^  '" "$1" | while IFS= read -r line; do
        own=$(printf '%s' "${line%%\': \'*}" | grep -o '{[a-z]*}' | sort -u)
        [ "$own" = "$(printf '%s' "${line#*\': \'}" | grep -o '{[a-z]*}' | sort -u)" ] || echo "$line"
    done
}

check_page() {
    page_texts | LC_ALL=C sort -u >said
    for file in "$root"/web/text-*.js; do
        page_entries "$file" | LC_ALL=C sort >translated
        if LC_ALL=C comm -3 said translated | grep . || wrong_braces "$file" | grep .; then
            echo "$file hasn't these texts of the page (left), or has too many (right), or their words in braces differ."
            status=1
        fi
    done
}

# unknown: what the media service says to people, between the values in it, that host/KnownSentences.cpp lacks. What a
# program gets that asks wrongly stays English, as do log lines.
unknown() {
    cd "$root"
    perl -0777 -ne '
        my $literal = qr/"(?:[^"\\]|\\.)*"/;
        s/\blog(?:Debug|Info|Warning)\((?:[^";]|$literal)*;//g;
        s{^(?:#|\s*//).*|\x27"\x27}{}mg;
        s/(?<!\\)"\s+"//g;
        my @texts = /$literal/g;
        if ($ARGV =~ /KnownSentences/) { $known = "@texts"; next }
        for (grep { /[a-z] [a-z]/ } @texts) {
            s/^"(\w* operation failed: )?(Query string is not valid\. )?|\.?"$//g;
            push @unknown, "$ARGV: $_\n" if index($known, $_) < 0;
        }
        END { print @unknown }' host/KnownSentences.cpp services/*.cpp services/mediaBridge/upnp/*.cpp \
        services/mediaBridge/bus/Bus*.cpp services/mediaBridge/bus/ListAnswer.cpp
    cd "$work"
}

check() {
    status=0
    check_page
    if unknown | grep .; then
        echo "A text of the media service for people stands in host/KnownSentences.cpp, too."
        status=1
    fi
    if unmarked | grep .; then
        echo "A text for people is written as Text::tr(\"…\")."
        status=1
    fi
    for file in $files; do
        if ! diff -u "$root/$file" "$file"; then
            echo "$file isn't up to date; ./run translations mends that."
            status=1
        fi
        if grep -B 4 'type="unfinished"' "$file"; then
            echo "$file has texts without a translation."
            status=1
        fi
        wrong_marks "$file" || status=1
    done
    return $status
}

if [ -n "${2:-}" ]; then
    for name in host/translations/orka modules/upnpClient/translations/upnpClient; do
        echo "<!DOCTYPE TS><TS version=\"2.1\" language=\"$2\" sourcelanguage=\"en\"/>" >"${name}_$2.ts"
    done
fi
files=$(echo host/translations/*.ts modules/upnpClient/translations/*.ts)
update host/translations/orka host sdk
update modules/upnpClient/translations/upnpClient modules
case ${1:-} in
update) for file in $files; do cp "$file" "$root/$file"; done ;;
check) check ;;
esac
