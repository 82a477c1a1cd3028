# Writes normality.inc beside this script, by ad.test of the R package nortest:
#
#   Rscript make_normality_table.R
#
# The data are samples of examples/ (one column each) and 40 evenly spread normal quantiles, whose fit is nearly perfect.
library(nortest)
number <- function(x) sprintf("%.17g", x)

rows <- list(c("portpirie_sea_level", "sealevel"), c("faithful", "waiting"), c("groundbeef", "serving"),
             c("ozone", "temp"), c("ozone", "vh"))
lines <- "// Made by make_normality_table.R with R 4.2 and nortest 1.0."
for (row in rows) {
  x <- read.csv(paste0("../../../examples/", row[1], ".csv"))[[row[2]]]
  test <- ad.test(x)
  lines <- c(lines, sprintf("{\"%s\", \"%s\", %d, %s, %s},", row[1], row[2], length(x), number(test$statistic),
                            number(test$p.value)))
}
test <- ad.test(qnorm(ppoints(40)))
lines <- c(lines, sprintf("{\"\", \"\", 40, %s, %s},", number(test$statistic), number(test$p.value)))
writeLines(lines, "normality.inc")
