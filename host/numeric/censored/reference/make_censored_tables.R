# Writes sets.csv, published life data as bounds of each value, and the tables of their fits: survreg.inc by
# survival::survreg, fitdistcens.inc by fitdistrplus::fitdistcens, optim.inc by stats::optim, curves.inc by survival::survfit
# and stats::isoreg.
suppressMessages({
  library(survival)
  library(fitdistrplus)
  library(numDeriv)
  library(evd)
  library(MASS)
})
folder <- dirname(sub("--file=", "", grep("--file=", commandArgs(), value = TRUE)))
right <- function(time, event) data.frame(left = time, right = ifelse(event == 1, time, NA))
data(smokedfish, fluazinam, salinity, package = "fitdistrplus")
inspected <- function(d) rbind(data.frame(left = NA, right = rep(d$hours, d$x)), data.frame(left = rep(d$hours, d$n - d$x), right = NA))
cracked <- data.frame(hours = c(400, 1000, 1400, 1800, 2200, 2600, 3000, 3400, 3800, 4200, 4600), # Nelson (1982), turbine wheels
                      x = c(0, 4, 2, 7, 5, 9, 9, 6, 22, 21, 21), n = c(39, 53, 33, 73, 30, 39, 42, 13, 34, 40, 36))
sets <- list(aml = right(aml$time, aml$status), ovarian = right(ovarian$futime, ovarian$fustat),
             lung = right(lung$time, lung$status - 1), veteran = right(veteran$time, veteran$status),
             gehan = right(gehan$time, gehan$cens), motors = right(motors$time, motors$cens),
             fans = right(genfan$hours, genfan$status), turbine = inspected(cracked),
             smokedfish = smokedfish, fluazinam = fluazinam, salinity = salinity)
number <- function(x) ifelse(is.na(x), "", format(x, digits = 15, trim = TRUE))
lines <- unlist(lapply(names(sets), function(s) paste(s, number(sets[[s]]$left), number(sets[[s]]$right), sep = ",")))
writeLines(c("set,lower,upper", lines), file.path(folder, "sets.csv"))

digits <- function(x) paste(sprintf("%.10g", x), collapse = ", ")
surv <- function(d) Surv(d$left, d$right, type = "interval2")
# No row where survreg itself warns that it has not converged.
survreg_row <- function(name, family, code) tryCatch(converged_row(name, family, code), warning = function(w) NULL)
converged_row <- function(name, family, code) {
  fit <- survreg(surv(sets[[name]]) ~ 1, dist = family, control = survreg.control(rel.tolerance = 1e-13, maxiter = 200))
  intercept <- coef(fit)[[1]]
  scale <- fit$scale
  v <- vcov(fit)
  values <- switch(family, gaussian = , lognormal = c(intercept, scale), weibull = c(exp(intercept), 1 / scale),
                   rayleigh = c(exp(intercept) / sqrt(2), 0))
  errors <- switch(family, gaussian = , lognormal = c(sqrt(v[1, 1]), scale * sqrt(v[2, 2])),
                   weibull = c(values[1] * sqrt(v[1, 1]), values[2] * sqrt(v[2, 2])), rayleigh = c(values[1] * sqrt(v[1, 1]), 0))
  sprintf('{"%s", DistributionCode::%s, %s, {%s}, {%s}},', name, code, digits(fit$loglik[2]), digits(values), digits(errors))
}
families <- c(gaussian = "kNormal", lognormal = "kLogNormal", weibull = "kWeibull", rayleigh = "kRayleigh")
rows <- unlist(lapply(names(sets), function(s) lapply(names(families), function(f) survreg_row(s, f, families[[f]]))))
writeLines(c("// make_censored_tables.R", rows), file.path(folder, "survreg.inc"))

# The rest by optim() over the likelihood that fitdistcens takes, with distributions of evd and of base R.
loglik <- function(d, density, cdf) {
  exact <- !is.na(d$left) & !is.na(d$right) & d$left == d$right
  x <- d[exact, ]
  rest <- d[!exact, ]
  upper <- ifelse(is.na(rest$right), 1, cdf(rest$right))
  lower <- ifelse(is.na(rest$left), 0, cdf(rest$left))
  sum(log(density(x$left))) + sum(log(upper - lower))
}
optimum <- function(f, start) {
  f <- local({
    g <- f
    function(u) {
      value <- suppressWarnings(tryCatch(-g(u), error = function(e) Inf))
      if (is.finite(value)) value else 1e10
    }
  })
  for (i in 1:8) {
    found <- optim(start, f, control = list(reltol = 1e-15, maxit = 20000))
    start <- found$par
  }
  list(value = -found$value, par = found$par, hessian = numDeriv::hessian(f, found$par))
}
middle <- function(d) ifelse(is.na(d$left), d$right, ifelse(is.na(d$right), d$left, (d$left + d$right) / 2))
extreme_row <- function(name) {
  d <- sets[[name]]
  m <- middle(d)
  unit <- sd(m) # the search is over values in this unit, about their mean
  z <- (d - mean(m)) / unit
  fit <- optimum(function(u) loglik(z, function(x) dgev(x, u[1], u[2], u[3]), function(x) pgev(x, u[1], u[2], u[3])),
                 c(-0.45, 0.78, -0.05))
  exact <- sum(!is.na(d$left) & !is.na(d$right) & d$left == d$right)
  errors <- sqrt(diag(solve(fit$hessian))) * c(unit, unit, 1)
  sprintf('{"%s", DistributionCode::kGeneralExtremeValue, %s, {%s}, {%s}},', name, digits(fit$value - exact * log(unit)),
          digits(fit$par * c(unit, unit, 1) + c(mean(m), 0, 0)), digits(errors))
}
half_row <- function(name) {
  d <- sets[[name]]
  objective <- function(u) loglik(d, function(x) 2 * dnorm(x, 0, exp(u)), function(x) 2 * pnorm(x, 0, exp(u)) - 1)
  fit <- optimize(objective, log(sd(middle(d))) + c(-3, 5), maximum = TRUE, tol = 1e-12)
  u <- fit$maximum
  error <- exp(u) / sqrt(-numDeriv::hessian(objective, u)[1, 1])
  sprintf('{"%s", DistributionCode::kHalfNormal, %s, {%s, 0, 0}, {%s, 0, 0}},', name, digits(fit$objective), digits(exp(u)), digits(error))
}
# Left out: where the likelihood of the extreme value distribution grows towards an end of its parameters, and smoked fish,
# whose values are no half normal ones by far.
writeLines(c("// make_censored_tables.R", sapply(setdiff(names(sets), "smokedfish"), half_row),
             sapply(setdiff(names(sets), c("motors", "fans", "smokedfish", "fluazinam")), extreme_row)),
           file.path(folder, "optim.inc"))

# fitdistcens itself, with its default search, whose result is good to some four digits.
cens_row <- function(name) {
  fit <- fitdistcens(sets[[name]], "weibull", optim.method = "Nelder-Mead", control = list(reltol = 1e-14, maxit = 10000))
  sprintf('{"%s", DistributionCode::kWeibull, %s, {%s, 0}, {%s, 0}},', name, digits(fit$loglik), digits(rev(fit$estimate)), digits(rev(fit$sd)))
}
writeLines(c("// make_censored_tables.R", sapply(c("smokedfish", "fluazinam", "salinity"), cens_row)),
           file.path(folder, "fitdistcens.inc"))

curve_rows <- function(name, at, probability) sprintf('{"%s", %s, %s},', name, sprintf("%.10g", at), sprintf("%.10g", probability))
kaplan_meier <- function(name) {
  d <- sets[[name]]
  f <- survfit(Surv(d$left, !is.na(d$right)) ~ 1)
  curve_rows(name, f$time, 1 - f$surv)
}
# Where every value is known from one inspection alone, the curve is the isotonic regression of the shares that had failed (Ayer
# et al. 1955, An empirical distribution function for sampling with incomplete information).
inspection_rows <- function(name) {
  d <- sets[[name]]
  at <- ifelse(is.na(d$left), d$right, d$left)
  failed <- as.numeric(is.na(d$left))[order(at)]
  shares <- tapply(seq_along(at), sort(at), length)
  mean_at <- tapply(failed, sort(at), mean)
  fit <- isoreg(rep(seq_along(shares), shares), rep(mean_at, shares))$yf
  curve_rows(name, as.numeric(names(shares)), tapply(fit, sort(at), mean))
}
writeLines(c("// make_censored_tables.R", unlist(lapply(c("aml", "gehan", "lung"), kaplan_meier)), inspection_rows("turbine")),
           file.path(folder, "curves.inc"))
