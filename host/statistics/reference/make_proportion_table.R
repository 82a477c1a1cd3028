# Writes proportion_intervals.inc beside this script: Rscript make_proportion_table.R
# The exact intervals of Clopper & Pearson (1934) by R's binom.test.
arguments <- commandArgs(trailingOnly = FALSE)
folder <- dirname(sub("^--file=", "", grep("^--file=", arguments, value = TRUE)))
lines <- "// Made by make_proportion_table.R: hits, cases, confidence, the limits of the interval."
for (confidence in c(0.9, 0.95, 0.99)) {
  for (case in list(c(0, 1), c(1, 1), c(0, 5000), c(1, 5000), c(255, 5000), c(2500, 5000), c(4999, 5000), c(5000, 5000),
                    c(40000, 100000), c(3, 10), c(81, 263))) {
    limits <- binom.test(case[1], case[2], conf.level = confidence)$conf.int
    lines <- c(lines, sprintf("{%d, %d, %.17g, %.17g, %.17g},", case[1], case[2], confidence, limits[1], limits[2]))
  }
}
writeLines(lines, file.path(folder, "proportion_intervals.inc"))
