# Rewrites a public header for doxygen, whose own marks it does without:
# - the comment at its top becomes the main page, or a page of its own;
# - a comment that begins with a ruled title begins a group, which ends at the next one;
# - a comment in front of a declaration belongs to it, one behind a member to that member;
# - lines that are set in by two columns or more are shown as they are;
# - declarations that follow each other share the comment in front of the first one.
function begin(line) {
  if (FNR == 1) {
    match(line, /zelm_[a-z]+/)
    name = substr(line, RSTART, RLENGTH)
    page = name == "zelm_imageutil" ? "@mainpage" : "@page " name
    sub(/^\/\* [^ ]+ - /, "/** " page " " name ".h\n * This library ", line)
  } else if (match(line, /^\/\* -+ /)) {
    line = substr(line, RLENGTH + 1)
    sub(/ *\*\/$/, "", line)
    line = toupper(substr(line, 1, 1)) substr(line, 2)
    line = (groups ? "/** @} */\n" : "") "/** @defgroup group" (++groups) " " line " */\n" \
           "/** @addtogroup group" groups "\n * @{"
    if (!in_comment) line = line " */"
  } else {
    sub(/\/\*/, "/**", line)
    if (match(line, /^\/\*\* [A-Za-z0-9_]+ - /))  # the name stands beside it anyway
      line = "/** " toupper(substr(line, RLENGTH + 1, 1)) substr(line, RLENGTH + 2)
  }
  return line
}
function verbatim(wanted) {
  if (wanted && !is_verbatim) print "@verbatim"
  if (!wanted && is_verbatim) print "@endverbatim"
  is_verbatim = wanted
}
in_comment {
  in_comment = !sub(/ *\*\/ *$/, "")
  sub(/^ *\* ?/, "")
  verbatim($0 ~ /^  /)
  if (!is_verbatim) gsub(/#/, "\\#")  # or it would be a link
  print
  if (!in_comment) { verbatim(0); print "*/" }
  next
}
/^ *\/\*/ {
  in_comment = $0 !~ /\*\/ *$/
  print begin($0)
  declared = 0
  next
}
/^ZELM_(FRAMES_)?API/ {
  match($0, /[A-Za-z0-9_]+\(/)
  if (!declared) first = substr($0, RSTART, RLENGTH - 1)
  remark = $0
  if (!sub(/.*\/\* */, "", remark)) remark = "*/"
  if (declared) print "/** @copydoc " first "\n\n" (remark == "*/" ? "" : "Here: ") remark
  sub(/ *\/\*.*/, "")
  declared = 1
}
/^$/ { declared = 0 }
# A comment behind a member may go on for several lines.
/^[^#].* \/\*/ { sub(/\/\*/, "/**<") }
/^#endif \/\* ZELM_IMAGEUTIL_H/ { print "/** @} */" }
{ print }
