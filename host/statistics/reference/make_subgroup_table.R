# Writes subgroups.inc: the deviation within the subgroups of examples/piston_rings.csv, whole and with the last values of
# some samples left out, by base R. The distribution of the range is ptukey() with infinite degrees of freedom.
folder <- dirname(sub("--file=", "", grep("--file=", commandArgs(), value = TRUE)))
rings <- read.csv(file.path(folder, "..", "..", "..", "examples", "piston_rings.csv"))
above <- function(n) function(w) ptukey(w, n, Inf, lower.tail = FALSE)
d2 <- function(n) integrate(above(n), 0, Inf, rel.tol = 1e-10)$value
d3 <- function(n) sqrt(2 * integrate(function(w) w * above(n)(w), 0, Inf, rel.tol = 1e-10)$value - d2(n)^2)
c4 <- function(n) sqrt(2 / (n - 1)) * exp(lgamma(n / 2) - lgamma((n - 1) / 2))
row <- function(left_out) {
  groups <- split(rings$diameter, rings$sample)
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
