# Makes the tables of docs/performance.md out of lines "NAME VALUE": the median of each name's values, as they are and
# as ratios to curl's or, where curl has none, to the best of the others.

function sorted_insert(name, value,    i) {
  for (i = count[name]++; i > 0 && values[name, i] > value; --i) values[name, i + 1] = values[name, i]
  values[name, i + 1] = value
}

function median(name) { return values[name, int((count[name] + 1) / 2)] }

function best_peer(kind, figure,    p, best) {
  if ((kind ".curl." figure) in count) return median(kind ".curl." figure)
  for (p in peers)
    if ((kind "." p "." figure) in count && (!best || median(kind "." p "." figure) < best))
      best = median(kind "." p "." figure)
  return best
}

function cell(kind, program, figure, by, form,    name) {
  name = kind "." program "." figure
  return name in count ? sprintf(form " (%.2f)", median(name) / by, median(name) / best_peer(kind, figure)) : "–"
}

function row(words, kind, figure, by, form,    i, text) {
  text = "| " words " |"
  for (i = 1; i <= programs; ++i) text = text " " cell(kind, program[i], figure, by, form) " |"
  print text
}

function rows(words, kind, unit, by) {
  row(words ", wall", kind, "wall", 1, "%.2f s")
  row("CPU" unit, kind, "cpu", by, "%.2f s")
  row("peak memory", kind, "peak", 1, "%.0f MiB")
}

function alone(words, name, form, aim) { printf "| %s | " form " | %s |\n", words, median(name), aim }

function listing(words, kind, aim) {
  alone(words ", wall", kind ".agent.wall", "%.1f s", "")
  alone("CPU", kind ".agent.cpu", "%.1f s", "")
  alone("peak memory", kind ".agent.peak", "%.0f MiB", aim)
}

{ sorted_insert($1, $2) }

END {
  programs = split("agent curl rclone1 rclone aws1 aws", program, " ")
  split("rclone1 rclone aws1 aws", list, " ")
  for (i in list) peers[list[i]]

  print "| | agent | `curl` | `rclone`, one at a time | `rclone`, four | `aws`, one at a time | `aws`, ten |"
  print "|---|---|---|---|---|---|---|"
  rows("**300 pictures of 8 MiB**", "large", " per GiB", 300 * 8 / 1024)
  rows("**2,000 pictures of 100 KiB**", "small", " per 1,000 pictures", 2)
  rows("**those 2,000 again: nothing is new**", "again", "", 1)
  print ""
  printf "Four `curl` processes at once take %.2f of the time of one for the large pictures and %.2f for the small\n" \
    "ones: what is below 1 is room that the service had left.\n",
    median("large.curl4.wall") / median("large.curl.wall"), median("small.curl4.wall") / median("small.curl.wall")
  printf "With each flush of the disk answered at once, the agent takes %.2f of `curl`'s time for the small ones; the\n" \
    "rest of the difference is the price of having each picture safe there.\n",
    median("unflushed.agent.wall") / median("small.curl.wall")
  print ""
  print "| the agent alone | | aim |"
  print "|---|---|---|"
  listing("**a first listing of 100,000 objects**, to the first request for one of them", "listing1e5", "")
  listing("**100,000 objects listed again and left out** by the ids of the bookkeeping", "taken1e5", "")
  listing("**a first listing of 1,000,000 objects**", "listing1e6", "under 250 MiB")
  alone("**start to icon**", "face.start", "%.0f ms", "under 120 ms")
  alone("**a second start that hands a URL over**", "face.handover", "%.0f ms", "under 30 ms")
  alone("**linked and waiting**, of one core", "face.idle.cpu", "%.3f %%", "at most 0.05 %")
  alone("resident memory", "face.idle.resident", "%.1f MiB", "at most 40 MB")
}
