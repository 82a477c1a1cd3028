# Writes long_samples.inc: fits of the generalised extreme value distribution to many values, of which every third is right
# censored. The values are the quantiles at (i - 1/2) / n of a distribution. The search is stats::optim over the densities of
# evd, ended by Newton's method with the derivatives that stats::deriv3 finds symbolically, which also give the errors.
suppressMessages(library(evd))
folder <- dirname(sub("--file=", "", grep("--file=", commandArgs(), value = TRUE)))
digits <- function(x) paste(sprintf("%.10g", x), collapse = ", ")
names_of <- c("m", "s", "k")
density_slopes <- deriv3(~ -log(s) - (1 + 1 / k) * log(1 + k * (x - m) / s) - (1 + k * (x - m) / s)^(-1 / k), names_of,
                         function(x, m, s, k) NULL)
tail_slopes <- deriv3(~ log(1 - exp(-(1 + k * (x - m) / s)^(-1 / k))), names_of, function(x, m, s, k) NULL)
newton <- function(u, exact, right) {
  for (i in 1:20) {
    a <- density_slopes(exact, u[1], u[2], u[3])
    b <- tail_slopes(right, u[1], u[2], u[3])
    gradient <- colSums(attr(a, "gradient")) + colSums(attr(b, "gradient"))
    hessian <- apply(attr(a, "hessian"), 2:3, sum) + apply(attr(b, "hessian"), 2:3, sum)
    u <- u - solve(hessian, gradient)
  }
  list(par = u, value = sum(a) + sum(b), errors = sqrt(diag(solve(-hessian))))
}
fit_row <- function(code, quantile, count) {
  x <- quantile((seq_len(count) - 0.5) / count)
  is_right <- seq_len(count) %% 3 == 1
  objective <- function(u) {
    value <- -sum(dgev(x[!is_right], u[1], u[2], u[3], log = TRUE)) -
      sum(log(pgev(x[is_right], u[1], u[2], u[3], lower.tail = FALSE)))
    if (is.finite(value)) value else 1e10
  }
  start <- c(mean(x), sd(x), -0.1)
  for (i in 1:3) start <- optim(start, objective, control = list(reltol = 1e-12, maxit = 5000, parscale = c(sd(x), sd(x), 1)))$par
  found <- newton(start, x[!is_right], x[is_right])
  stopifnot(abs(found$value + objective(start)) < 1e-3)
  sprintf("{DistributionCode::%s, %d, %s, {%s}, {%s}},", code, count, digits(found$value), digits(found$par), digits(found$errors))
}
rows <- c(fit_row("kNormal", function(p) qnorm(p, 10, 1), 100000), fit_row("kNormal", function(p) qnorm(p, 10, 1), 300000),
          fit_row("kWeibull", function(p) qweibull(p, 3, 100), 100000))
writeLines(c("// make_long_sample_table.R", rows), file.path(folder, "long_samples.inc"))
