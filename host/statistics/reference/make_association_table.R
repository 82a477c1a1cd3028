# Writes airquality.csv and associations.inc beside this script, by R's own functions:
#
#   Rscript make_association_table.R
#
# The data are R's airquality (daily air quality of New York, May to September 1973; Chambers, Cleveland, Kleiner &
# Tukey 1983), an empty cell where a value is missing. Correlations are by cor.test over the pairs that are present
# (Spearman's p-value by its t approximation: exact = FALSE), the regression is lm of the standardized complete cases,
# the first-order share is the adjusted R squared of a linear model on a factor of two classes.
data <- airquality[, c("Solar.R", "Wind", "Temp", "Ozone")]
write.csv(data, "airquality.csv", row.names = FALSE, na = "", quote = FALSE)
number <- function(x) sprintf("%.17g", x)

lines <- "// Made by make_association_table.R with R 4.2."
for (name in names(data)[1:3]) {
  x <- data[[name]]
  y <- data$Ozone
  pearson <- cor.test(x, y)
  spearman <- suppressWarnings(cor.test(x, y, method = "spearman", exact = FALSE))
  lines <- c(lines, sprintf("{\"%s\", %d, %s, %s, %s, %s},", name, sum(!is.na(x) & !is.na(y)), number(pearson$estimate),
                            number(pearson$p.value), number(spearman$estimate), number(spearman$p.value)))
}
writeLines(lines, "associations.inc")

complete <- na.omit(data)
standard <- as.data.frame(scale(complete))
fit <- lm(Ozone ~ Solar.R + Wind + Temp, standard)
n <- nrow(complete)
lines <- "// Made by make_association_table.R with R 4.2."
for (name in names(data)[1:3]) {
  x <- complete[[name]]
  class <- factor(x <= sort(x)[n %/% 2])
  first <- summary(lm(complete$Ozone ~ class))$adj.r.squared
  rank <- cor(rank(x), rank(complete$Ozone))
  lines <- c(lines, sprintf("{\"%s\", %s, %s, %s},", name, number(rank), number(coef(fit)[[name]]), number(first)))
}
lines <- c(lines, sprintf("// Cases %d, R squared %s", n, number(summary(fit)$r.squared)))
writeLines(lines, "sensitivity.inc")
