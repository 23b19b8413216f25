# The release notes of packages and stores, from CHANGELOG.md alone.
#   awk -v form=debian -f release-notes.awk CHANGELOG.md             writes the Debian changelog
#   awk -f release-notes.awk CHANGELOG.md METAINFO                   writes METAINFO, its <releases/> filled
# With -v version=VERSION it is a failure that the newest release is another one: a version has release notes.
# What is not released yet is left out. A store shows the first sentence of each note.

function flush_note() {
  if (note == "") return
  if (!group_written) {
    group_written = 1
    if (form == "debian") printf "\n  [ %s ]\n", group
    else releases = releases close_list() sprintf("        <p>%s</p>\n        <ul>\n", group)
    list_open = form != "debian"
  }
  if (form == "debian") write_folded(note)
  else releases = releases "          <li>" quoted(first_sentence(note)) "</li>\n"
  note = ""
}

function close_list() {
  if (!list_open) return ""
  list_open = 0
  return "        </ul>\n"
}

function close_release() {
  flush_note()
  if (release == "") return
  if (form == "debian") printf "\n -- %s  %s\n", maintainer, day(date)
  else releases = releases close_list() "      </description>\n    </release>\n"
  release = ""
}

function open_release(name, on) {
  release = name
  date = on
  count++
  if (count == 1) newest = name
  if (form == "debian") printf("%sdownloaderpictora (%s) unstable; urgency=medium\n", (count > 1 ? "\n" : ""), name)
  else releases = releases "    <release version=\"" name "\" date=\"" on "\">\n      <description>\n"
}

# As Debian writes a day, at noon.
function day(date,   command, line) {
  command = "LC_ALL=C date -u -d '" date " 12:00' '+%a, %d %b %Y %H:%M:%S +0000'"
  command | getline line
  close(command)
  return line
}

function first_sentence(text,   end) {
  end = match(text, /[.] [A-Z]/)
  return end ? substr(text, 1, end) : text
}

function quoted(text) {
  gsub(/&/, "\\&amp;", text)
  gsub(/</, "\\&lt;", text)
  gsub(/>/, "\\&gt;", text)
  return text
}

function write_folded(text,   words, number, i, line) {
  number = split(text, words, " ")
  line = "  *"
  for (i = 1; i <= number; i++) {
    if (length(line) + 1 + length(words[i]) > 78) {
      print line
      line = "   "
    }
    line = line " " words[i]
  }
  print line
}

BEGIN { maintainer = "NORVALE INC <downloaderpictora@norvale.example>" }

FNR == 1 && NR > 1 { close_release() }
FNR < NR { # the metainfo
  if ($1 == "<releases/>") printf "  <releases>\n%s  </releases>\n", releases
  else print
  next
}

/^## / {
  close_release()
  if ($2 !~ /^\[[0-9]/) next
  open_release(substr($2, 2, length($2) - 2), $4)
}
release == "" { next }
/^### / { flush_note(); group = $2; group_written = 0; next }
/^- / { flush_note(); note = substr($0, 3); gsub(/`/, "", note); next }
/^  / && note != "" { line = substr($0, 3); gsub(/`/, "", line); note = note " " line }

END {
  close_release()
  if (version != "" && newest != version) {
    print "CHANGELOG.md tells of " newest " as the newest release, not of " version > "/dev/stderr"
    exit 1
  }
}
