# Makes the tables of docs/performance.md out of lines "NAME VALUE": the median of each name's values, as they are and
# as ratios to curl's or, where curl has none, to the best of the others. Names are KIND.PROGRAM.FIGURE; programs that
# are asked for the same as an agent with metadata and sorting off end in "_plain". What was not measured is a dash.

function sorted_insert(name, value,    i) {
  for (i = count[name]++; i > 0 && values[name, i] > value; --i) values[name, i + 1] = values[name, i]
  values[name, i + 1] = value
}

function median(name) { return values[name, int((count[name] + 1) / 2)] }

# Only these ask for less where the agent's settings are off; the others fetch the same.
function name_of(kind, program, way, figure) {
  return kind "." program (program ~ /^(agent|former|curl)$/ ? way : "") "." figure
}

function shown(name, form) { return name in count ? sprintf(form, median(name)) : "–" }

# --- what was measured

function base(kind, way, figure,    p, name, best) {
  name = name_of(kind, "curl", way, figure)
  if (name in count) return median(name)
  for (p = 1; p <= programs; ++p) {
    name = name_of(kind, program[p], way, figure)
    if (program[p] !~ /^(agent|former)$/ && name in count && (!best || median(name) < best)) best = median(name)
  }
  return best
}

function cell(kind, program, way, figure, by, form,    name) {
  name = name_of(kind, program, way, figure)
  if (!(name in count)) return "–"
  return sprintf(form " (%.2f)", median(name) / by, median(name) / base(kind, way, figure))
}

function row(words, kind, way, figure, by, form,    i, text) {
  text = "| " words " |"
  for (i = 1; i <= programs; ++i) text = text " " cell(kind, program[i], way, figure, by, form) " |"
  print text
}

function rows(words, kind, unit, by,    way, i) {
  for (i = 1; i <= 2; ++i) {
    way = i == 1 ? "" : "_plain"
    row((i == 1 ? "**" words "**" : "metadata and sorting off") ", wall", kind, way, "wall", 1, "%.2f s")
    row("CPU" unit, kind, way, "cpu", by, "%.2f s")
    row("peak memory", kind, way, "peak", 1, "%.0f MiB")
  }
}

function header(words,    i, line) {
  line = "| " words " |"
  for (i = 1; i <= programs; ++i) line = line " " title[program[i]] " |"
  print line
  gsub(/[^|]+/, "---", line)
  print line
}

function place(words, name, list) {
  programs = split(list, program, " ")
  header(words)
  rows("2,000 pictures of 100 KiB", name ".small", " per 1,000 pictures", median("small.count") / 1000)
  rows("those again: nothing is new", name ".again", "", 1)
  rows("40 pictures of 8 MiB", name ".large", " per GiB", median("large.count") * 8 / 1024)
  print ""
}

function scale(    i, number, list) {
  print "| 200 pictures of 100 KiB, 50 ms away | agent | `curl -Z` with as many connections |"
  print "|---|---|---|"
  split("0 1 4 8 16", list, " ")
  for (i = 1; i <= 5; ++i) {
    number = list[i]
    printf "| \"requestsAhead\" %s | %s | %s |\n", number, shown("ahead" number ".agent.wall", "%.1f s"),
      shown("ahead" number ".curl.wall", "%.1f s")
  }
  print ""
}

function alone(words, name, form, aim) { printf "| %s | %s | %s |\n", words, shown(name, form), aim }

function listing(words, kind, aim) {
  alone(words ", wall", kind ".agent.wall", "%.1f s", "")
  alone("CPU", kind ".agent.cpu", "%.1f s", "")
  alone("peak memory", kind ".agent.peak", "%.0f MiB", aim)
}

# --- the aims

function aim(words, measured, holds) {
  printf "| %s | %s | %s |\n", words, measured, measured ~ /–/ ? "–" : holds ? "yes" : "**no**"
}

function ratio(name, to) { return name in count && to in count ? median(name) / median(to) : -1 }

function ratio_text(value) { return value < 0 ? "–" : sprintf("%.2f", value) }

# The agent against another program, by default settings and with metadata and sorting off.
function against(words, kind, other, figure, limit,    full, plain) {
  full = ratio(name_of(kind, "agent", "", figure), name_of(kind, other, "", figure))
  plain = ratio(name_of(kind, "agent", "_plain", figure), name_of(kind, other, "_plain", figure))
  aim(words, ratio_text(full) ", " ratio_text(plain), full <= limit && plain <= limit)
}

function highest_peak(    name, most) {
  for (name in count)
    if (name ~ /^(near|far|slow|ahead).*agent.*\.peak$/ && median(name) > most) most = median(name)
  return most
}

function aims(    peak, part) {
  print "| aim | measured | holds |"
  print "|---|---|---|"
  against("small pictures, 50 ms away: wall at most 1.15 of `curl -Z`", "far.small", "curl", "wall", 1.15)
  against("and below `rclone`", "far.small", "rclone", "wall", 1)
  against("and below `aws`", "far.small", "aws", "wall", 1)
  against("large pictures, 50 ms away: wall at most 1.10 of `curl -Z`", "far.large", "curl", "wall", 1.10)
  against("and below `rclone`", "far.large", "rclone", "wall", 1)
  against("small pictures, near: wall below `rclone`", "near.small", "rclone", "wall", 1)
  against("and CPU at most 1.3 of `rclone` one at a time", "near.small", "rclone1", "cpu", 1.3)
  against("large pictures, near: wall below `rclone`", "near.large", "rclone", "wall", 1)
  against("and CPU no more than version 1.0.0's", "near.large", "former", "cpu", 1)
  part = ratio("slow.arrived", "slow.count")
  aim("slow line: no picture fails", part < 0 ? "–" : median("slow.arrived") " of " median("slow.count"), part == 1)
  part = ratio("slow.agent.wall", "slow.line")
  aim("and wall at most 1.05 of the line", ratio_text(part), part <= 1.05)
  peak = highest_peak()
  aim("peak memory at most 48 MiB", peak ? sprintf("%.0f MiB", peak) : "–", peak <= 48)
  part = ratio("listing1e6.agent.wall", "listing1e6.former.wall")
  aim("first listing of 1,000,000 objects: wall at most 0.45 of version 1.0.0's", ratio_text(part), part <= 0.45)
  print ""
  print "Where there are two figures, the second is with metadata and sorting off; the aim holds where both do."
  print ""
}

{ sorted_insert($1, $2) }

END {
  title["agent"] = "agent"
  title["former"] = "version 1.0.0"
  title["curl"] = "`curl -Z`, eight"
  title["rclone"] = "`rclone`, four"
  title["rclone1"] = "`rclone`, one at a time"
  title["aws"] = "`aws`, ten"
  title["aws1"] = "`aws`, one at a time"

  aims()
  place("50 ms away", "far", "agent curl rclone aws")
  place("near", "near", "agent curl rclone rclone1 aws aws1 former")
  printf "With each flush of the disk answered at once, the agent takes %s of its time for the small pictures,\n" \
    "near.\n\n", ratio_text(ratio("near.small.unflushed.wall", "near.small.agent.wall"))
  scale()
  printf "20 pictures of 30 MiB over 8 Mbit/s, 50 ms away: %s; the line alone takes %s for so many bytes.\n\n",
    shown("slow.agent.wall", "%.0f s"), shown("slow.line", "%.0f s")
  print "| the agent alone | | aim |"
  print "|---|---|---|"
  listing("**a first listing of 100,000 objects**, to the first request for one of them", "listing1e5", "")
  listing("**100,000 objects listed again and left out** by the ids of the bookkeeping", "taken1e5", "")
  listing("**a first listing of 1,000,000 objects**", "listing1e6", "under 250 MiB")
  alone("the same with version 1.0.0, wall", "listing1e6.former.wall", "%.1f s", "")
  alone("CPU", "listing1e6.former.cpu", "%.1f s", "")
  alone("peak memory", "listing1e6.former.peak", "%.0f MiB", "")
  alone("**start to icon**", "face.start", "%.0f ms", "under 120 ms")
  alone("**a second start that hands a URL over**", "face.handover", "%.0f ms", "under 30 ms")
  alone("**linked and waiting**, of one core", "face.idle.cpu", "%.3f %%", "at most 0.05 %")
  alone("resident memory", "face.idle.resident", "%.1f MiB", "at most 40 MB")
}
