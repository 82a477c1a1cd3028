# Writes subgroups.inc: the deviation within the subgroups of examples/process.csv, whole and with the last values of
# some samples left out, by base R, and charts.inc, the limits of their control charts. The distribution of the range is ptukey() with infinite degrees of freedom.
folder <- dirname(sub("--file=", "", grep("--file=", commandArgs(), value = TRUE)))
parts <- read.csv(file.path(folder, "..", "..", "..", "examples", "process.csv"))
stopifnot(identical(parts$size, boot::capability$y))
above <- function(n) function(w) ptukey(w, n, Inf, lower.tail = FALSE)
d2 <- function(n) integrate(above(n), 0, Inf, rel.tol = 1e-10)$value
d3 <- function(n) sqrt(2 * integrate(function(w) w * above(n)(w), 0, Inf, rel.tol = 1e-10)$value - d2(n)^2)
c4 <- function(n) sqrt(2 / (n - 1)) * exp(lgamma(n / 2) - lgamma((n - 1) / 2))
row <- function(left_out) {
  groups <- split(parts$size, parts$sample)
  for (i in seq_along(groups)) groups[[i]] <- head(groups[[i]], 5 - if (left_out > 0) (i %% (left_out + 1)) else 0)
  n <- sapply(groups, length)
  f <- (sapply(n, d2) / sapply(n, d3))^2
  h <- sapply(n, c4)^2 / (1 - sapply(n, c4)^2)
  range <- sum(f * sapply(groups, function(x) diff(range(x))) / sapply(n, d2)) / sum(f)
  deviation <- sum(h * sapply(groups, sd) / sapply(n, c4)) / sum(h)
  model <- lm(unlist(groups) ~ factor(rep(names(groups), n)))
  sprintf("{%d, %.8g, %.8g, %.12g, %.8g, %.12g, %d},", left_out, range, sum(f) / 2, deviation, sum(h) / 2,
          summary(model)$sigma, model$df.residual)
}
writeLines(c("// make_subgroup_table.R", row(0), row(1), row(3)), file.path(folder, "subgroups.inc"))
# Means and ranges or deviations of whole samples: the centre and three of its standard errors to both sides.
groups <- split(parts$size, parts$sample)
chart <- function(centre, error) sprintf("{%.12g, %.12g, %.12g},", max(centre - 3 * error, if (centre < 1) 0 else -Inf), centre, centre + 3 * error)
range <- mean(sapply(groups, function(x) diff(range(x))))
deviation <- mean(sapply(groups, sd))
charts <- c(chart(mean(parts$size), range / d2(5) / sqrt(5)), chart(range, range * d3(5) / d2(5)),
            chart(mean(parts$size), deviation / c4(5) / sqrt(5)), chart(deviation, deviation * sqrt(1 - c4(5)^2) / c4(5)))
writeLines(c("// make_subgroup_table.R", charts), file.path(folder, "charts.inc"))
