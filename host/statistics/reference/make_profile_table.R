# Writes profile_intervals.inc: 95 % intervals of quantiles and of probabilities of exceeding a value by the profile likelihood,
# of fits to the data in examples/ and to the censored data that stand beside host/numeric/censored. One parameter follows from
# the quantile, the others are searched by stats::optimize and stats::optim, and the ends by stats::uniroot. The quantiles of
# evd's own profiles of extreme values are compared.
suppressMessages(library(evd))
folder <- dirname(sub("--file=", "", grep("--file=", commandArgs(), value = TRUE)))
root <- file.path(folder, "..", "..", "..")
example <- function(name) { x <- read.csv(file.path(root, "examples", name))[[1]]; data.frame(lower = x, upper = x) }
all_sets <- read.csv(file.path(root, "host", "numeric", "censored", "reference", "sets.csv"))
censored <- function(name) all_sets[all_sets$set == name, c("lower", "upper")]
level <- qchisq(0.95, 1) / 2
digits <- function(x) paste(sprintf("%.10g", x), collapse = ", ")

loglik <- function(d, log_density, cdf) {
  exact <- !is.na(d$lower) & !is.na(d$upper) & d$lower == d$upper
  rest <- d[!exact, ]
  upper <- ifelse(is.na(rest$upper), 1, cdf(rest$upper))
  lower <- ifelse(is.na(rest$lower), 0, cdf(rest$lower))
  value <- suppressWarnings(sum(log_density(d$lower[exact])) + sum(log(upper - lower)))
  if (is.finite(value)) value else -1e10
}
# Of each family the likelihood by all parameters, the free ones, and what the constrained one is for a quantile q of p.
families <- list(
  kNormal = list(loglik = function(d, v) loglik(d, function(x) dnorm(x, v[1], exp(v[2]), TRUE), function(x) pnorm(x, v[1], exp(v[2]))),
                 with = function(q, p, free) c(q - exp(free[1]) * qnorm(p), free),
                 start = function(x) c(mean(x), log(sd(x))), cdf = function(x, v) pnorm(x, v[1], exp(v[2])),
                 quantile = function(p, v) qnorm(p, v[1], exp(v[2]))),
  kLogNormal = list(loglik = function(d, v) loglik(d, function(x) dlnorm(x, v[1], exp(v[2]), TRUE), function(x) plnorm(x, v[1], exp(v[2]))),
                    with = function(q, p, free) c(log(q) - exp(free[1]) * qnorm(p), free),
                    start = function(x) c(mean(log(x)), log(sd(log(x)))), cdf = function(x, v) plnorm(x, v[1], exp(v[2])),
                    quantile = function(p, v) qlnorm(p, v[1], exp(v[2]))),
  kWeibull = list(loglik = function(d, v) loglik(d, function(x) dweibull(x, exp(v[2]), exp(v[1]), TRUE), function(x) pweibull(x, exp(v[2]), exp(v[1]))),
                  with = function(q, p, free) c(log(q) - log(-log1p(-p)) / exp(free[1]), free),
                  start = function(x) c(log(mean(x)), 0.2), cdf = function(x, v) pweibull(x, exp(v[2]), exp(v[1])),
                  quantile = function(p, v) qweibull(p, exp(v[2]), exp(v[1]))),
  kRayleigh = list(loglik = function(d, v) loglik(d, function(x) dweibull(x, 2, exp(v[1]) * sqrt(2), TRUE), function(x) pweibull(x, 2, exp(v[1]) * sqrt(2))),
                   with = function(q, p, free) log(q) - log(-2 * log1p(-p)) / 2,
                   start = function(x) log(mean(x)), cdf = function(x, v) pweibull(x, 2, exp(v[1]) * sqrt(2)),
                   quantile = function(p, v) qweibull(p, 2, exp(v[1]) * sqrt(2))),
  kGeneralExtremeValue = list(
    loglik = function(d, v) if (v[3] <= -1) -1e10 else
      loglik(d, function(x) dgev(x, v[1], exp(v[2]), v[3], log = TRUE), function(x) pgev(x, v[1], exp(v[2]), v[3])),
    with = function(q, p, free) c(q - qgev(p, 0, exp(free[1]), free[2]), free),
    start = function(x) c(mean(x) - 0.45 * sd(x), log(0.78 * sd(x)), -0.05), cdf = function(x, v) pgev(x, v[1], exp(v[2]), v[3]),
    quantile = function(p, v) qgev(p, v[1], exp(v[2]), v[3])))

greatest <- function(f, start) {
  if (length(start) == 0) return(list(par = start, value = f(start)))
  if (length(start) == 1) {
    found <- optimize(f, start + c(-3, 3), maximum = TRUE, tol = 1e-12)
    return(list(par = found$maximum, value = found$objective))
  }
  for (i in 1:5) {
    found <- optim(start, f, control = list(fnscale = -1, reltol = 1e-15, maxit = 5000))
    start <- found$par
  }
  list(par = found$par, value = found$value)
}
ends <- function(deficit, centre, unit) {
  side <- function(sign) {
    reach <- unit
    while (deficit(centre + sign * reach) < level) reach <- 1.5 * reach
    uniroot(function(t) deficit(centre + sign * t) - level, c(0, reach), tol = 1e-11)$root * sign + centre
  }
  c(side(-1), side(1))
}
rows <- function(source, code, d, p, x) {
  family <- families[[code]]
  values <- ifelse(is.na(d$lower), d$upper, ifelse(is.na(d$upper), d$lower, (d$lower + d$upper) / 2))
  fit <- greatest(function(v) family$loglik(d, v), family$start(values))
  free <- fit$par[-1]
  best <- function(q, p) {
    found <- greatest(function(u) family$loglik(d, family$with(q, p, u)), free)
    fit$value - found$value
  }
  quantile_row <- function(p) {
    at <- family$quantile(p, fit$par)
    found <- ends(function(q) if (code != "kNormal" && code != "kGeneralExtremeValue" && q <= 0) 1e3 else best(q, p), at, sd(values) / 50)
    if (code == "kGeneralExtremeValue" && !any(is.na(d)))
      found_by_evd(d$lower, p, found)
    sprintf('{"%s", DistributionCode::%s, %s, true, %s},', source, code, digits(p), digits(found))
  }
  # The probability that x is exceeded is q where x is the quantile of 1 - q.
  exceedance_row <- function(x) {
    at <- qlogis(1 - family$cdf(x, fit$par))
    found <- plogis(ends(function(logit) best(x, plogis(-logit)), at, 0.05))
    sprintf('{"%s", DistributionCode::%s, %s, false, %s},', source, code, digits(x), digits(found))
  }
  c(sapply(p, quantile_row), sapply(x, exceedance_row))
}
found_by_evd <- function(x, p, found) {
  fit <- fgev(x, prob = 1 - p, control = list(reltol = 1e-14))
  own <- confint(profile(fit, which = "quantile", xmax = 10, conf = 0.99, mesh = sd(x) / 500))
  stopifnot(abs(own - found) < 1e-3 * sd(x))
}
beef <- example("groundbeef.csv")
sea <- example("portpirie_sea_level.csv")
lines <- c(rows("groundbeef.csv", "kWeibull", beef, c(0.01, 0.5, 0.99), c(39.5, 200)),
           rows("groundbeef.csv", "kNormal", beef, c(0.01, 0.99), 200),
           rows("groundbeef.csv", "kRayleigh", beef, 0.9, 200),
           rows("portpirie_sea_level.csv", "kGeneralExtremeValue", sea, c(0.01, 0.5, 0.9, 0.99), c(4, 4.6)),
           rows("fans", "kWeibull", censored("fans"), c(0.01, 0.1, 0.5), 5000),
           rows("fans", "kLogNormal", censored("fans"), c(0.1, 0.5), 5000),
           rows("turbine", "kWeibull", censored("turbine"), c(0.1, 0.5), 1000),
           rows("aml", "kNormal", censored("aml"), 0.5, 60),
           rows("veteran", "kRayleigh", censored("veteran"), 0.5, 200),
           rows("lung", "kGeneralExtremeValue", censored("lung"), c(0.1, 0.9), 600))
writeLines(c("// make_profile_table.R", lines), file.path(folder, "profile_intervals.inc"))
