#!/usr/bin/env Rscript
# Writes box_values.inc: boxes of small samples by R. Quartiles are quantile(type = 7); whiskers and outliers follow
# from them as boxplot.stats() takes them from its hinges. Where quartiles and hinges agree (1, 5, 9, 13 … values) the
# script stops unless boxplot.stats() gives the same.
#
#     box_values.R > box_values.inc
samples <- list(
  c(7),
  c(1, 4),
  c(3, 3, 3, 3),
  c(-8, 1, 2, 3, 4, 5, 6, 7, 30),
  c(0.5, 1.25, 1.5, 2, 2, 2.25, 2.75, 3, 3.5, 4.125),
  c(2, 2, 2, 2, 2, 2, 2, 9),
  c(-100, -4, -3.5, 0, 0.25, 1, 1.5, 2, 2.5, 3, 4, 9.75, 11))
text <- function(x) paste0("{", paste(sprintf("%.17g", x), collapse = ", "), "}")
cat("// Made by box_values.R with R", paste0(R.version$major, ".", R.version$minor), "\n")
for (x in samples) {
  q <- quantile(x, c(0.25, 0.5, 0.75), type = 7, names = FALSE)
  reach <- 1.5 * (q[3] - q[1])
  inside <- x >= q[1] - reach & x <= q[3] + reach
  whiskers <- range(x[inside])
  if (length(x) %% 4 == 1) {
    theirs <- boxplot.stats(x)
    stopifnot(all.equal(theirs$stats, c(whiskers[1], q, whiskers[2])), all.equal(sort(theirs$out), sort(x[!inside])))
  }
  # sample, lower whisker, quartiles, upper whisker, mean; outliers
  cat("{", text(x), ", ", text(c(whiskers[1], q, whiskers[2], mean(x))), ", ", text(x[!inside]), "},\n", sep = "")
}
