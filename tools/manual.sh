#!/usr/bin/env bash
# Prints the manual page of zavri, made of what the program says with --help.
#
#   manual.sh ZAVRI VERSION
set -euo pipefail
zavri=$1 version=$2

# Makes paragraphs of the help of a command. The text of an argument begins in column 31 of its line
# or, where the argument is too long for that, of the next line.
paragraphs() {
  awk '
    function escaped(text) {
      gsub(/\\/, "\\e", text)
      gsub(/-/, "\\-", text)
      return text ~ /^[.'\'']/ ? "\\&" text : text
    }
    function end_argument() {
      if (argument == "") return
      if (text == "") { text = substr(argument, 31); argument = substr(argument, 1, 30) }
      gsub(/^ +| +$/, "", argument)
      print ".TP\n.B " escaped(argument) "\n" escaped(text)
      argument = text = ""
    }
    length($0) > 30 && substr($0, 1, 30) ~ /^ *$/ { text = substr($0, 31); next }
    { end_argument() }
    NR == 1 { print escaped($0 ".") }
    /^Usage: / { print ".PP\n.B " escaped(substr($0, 8)) }
    /^  / { argument = $0 }
    /^Example: / { print ".PP\nExample:\n.PP\n.RS\n" escaped(substr($0, 10)) "\n.RE" }'
}

cat <<PAGE
.TH ZAVRI 1 "" "zavri $version" "User Commands"
.SH NAME
zavri \\- post-processing of camera frames on files
.SH SYNOPSIS
.B zavri
.I COMMAND
[options]
.SH DESCRIPTION
zavri runs the operations of libmmcamera_zavricustpro on pictures, films, Y4M streams and raw frames,
makes the noisy bursts that they are tried with, and compares what comes out.
.SH COMMANDS
PAGE
for command in $("$zavri" --help | awk '/^  [a-z]/ { print $1 }'); do
  echo ".SS $command"
  "$zavri" "$command" --help | paragraphs
done
cat <<'PAGE'
.SH EXIT STATUS
0 if all is done, 1 if compare finds a plane below its limit, 2 if an argument or a file is wrong, 3
if the library refuses what it is given.
PAGE
