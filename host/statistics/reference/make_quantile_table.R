# Writes quantile_intervals.inc: 95 % intervals of quantiles and of probabilities of exceeding a value by the delta method,
# from fits of survival::survreg (Weibull and Log Normal) and evd::fgev to the data in examples/, with gradients by numDeriv.
# For Weibull and Log Normal quantiles they are those of survreg's own predictions.
suppressMessages({
  library(evd)
  library(numDeriv)
  library(survival)
})
folder <- dirname(sub("--file=", "", grep("--file=", commandArgs(), value = TRUE)))
example <- function(name) read.csv(file.path(folder, "..", "..", "..", "examples", name))[[1]]
z <- qnorm(0.975)
digits <- function(x) paste(sprintf("%.12g", x), collapse = ", ")
delta <- function(f, values, covariance) {
  g <- grad(f, values)
  f(values) + c(-1, 1) * z * sqrt(drop(g %*% covariance %*% g))
}
rows <- function(code, values, covariance, quantile, exceedance, to, from, p, x) {
  interval <- function(p) from(delta(function(v) to(quantile(p, v)), values, covariance))
  above <- function(x) plogis(delta(function(v) qlogis(exceedance(x, v)), values, covariance))
  head <- sprintf("{DistributionCode::%s, {%s}, {%s}, ", code, digits(values), digits(covariance))
  c(sapply(p, function(p) sprintf("%s%s, true, %s},", head, digits(p), digits(interval(p)))),
    sapply(x, function(x) sprintf("%s%s, false, %s},", head, digits(x), digits(above(x)))))
}
survreg_rows <- function(name, family) {
  x <- example(name)
  fit <- survreg(Surv(x) ~ 1, dist = family)
  isWeibull <- family == "weibull"
  values <- if (isWeibull) c(exp(coef(fit)), 1 / fit$scale) else c(coef(fit), fit$scale)
  jacobian <- diag(if (isWeibull) c(values[1], -values[2]) else c(1, values[2]))
  covariance <- jacobian %*% vcov(fit) %*% jacobian
  quantile <- if (isWeibull) function(p, v) qweibull(p, v[2], v[1]) else function(p, v) qlnorm(p, v[1], v[2])
  above <- if (isWeibull) function(x, v) pweibull(x, v[2], v[1], lower.tail = FALSE) else function(x, v) plnorm(x, v[1], v[2], lower.tail = FALSE)
  p <- c(0.01, 0.5, 0.99)
  own <- predict(fit, newdata = data.frame(a = 1), type = "uquantile", p = p, se.fit = TRUE)
  mine <- sapply(p, function(p) exp(delta(function(v) log(quantile(p, v)), values, covariance)))
  stopifnot(all.equal(log(mine[2, ] / mine[1, ]) / (2 * z), c(own$se.fit), tolerance = 1e-6))
  rows(if (isWeibull) "kWeibull" else "kLogNormal", values, covariance, quantile, above, log, exp, p, median(x) * c(0.5, 3))
}
gev_rows <- function() {
  fit <- fgev(example("portpirie_sea_level.csv"), control = list(reltol = 1e-14))
  v <- unname(fit$estimate)
  quantile <- function(p, v) qgev(p, v[1], v[2], v[3])
  centre <- quantile(0.5, v)
  unit <- (quantile(1 - 0.1587, v) - quantile(0.1587, v)) / 2
  rows("kGeneralExtremeValue", v, unname(fit$var.cov), quantile, function(x, v) pgev(x, v[1], v[2], v[3], lower.tail = FALSE),
       function(q) asinh((q - centre) / unit), function(a) centre + unit * sinh(a), c(0.01, 0.5, 0.9, 0.99), c(4, 4.6))
}
writeLines(c("// make_quantile_table.R", survreg_rows("groundbeef.csv", "weibull"), survreg_rows("danish_fire_losses.csv", "lognormal"),
             gev_rows()), file.path(folder, "quantile_intervals.inc"))
