#!/usr/bin/env Rscript
# The part of R in compare_fits.py, which calls it:
#   compare_fits.R data FOLDER          writes the data sets of R and its packages, one file each
#   compare_fits.R fit FOLDER KINDS     prints the fits of fitdistrplus, evd and mclust to the files of the folder;
#                                       KINDS: lines "file,continuous|discrete"
#   compare_fits.R test FOLDER FITS     prints Anderson-Darling by goftest for given parameters;
#                                       FITS: lines "file,distribution,parameters separated by blanks"
# Offsets are 0 everywhere. Parameters are in the order of the project's catalogue.
suppressPackageStartupMessages({
  library(fitdistrplus); library(evd); library(mclust); library(goftest)
})
arguments <- commandArgs(trailingOnly = TRUE)
folder <- arguments[2]
options(warn = -1, digits = 17)

# ---- distributions that R lacks ----
drayleigh <- function(x, scale) x / scale^2 * exp(-x^2 / (2 * scale^2))
prayleigh <- function(q, scale) 1 - exp(-q^2 / (2 * scale^2))
dhalf <- function(x, scale) 2 * dnorm(x / scale) / scale
phalf <- function(q, scale) 2 * pnorm(q / scale) - 1
dfolded <- function(x, location, scale) dnorm(x, location, scale) + dnorm(-x, location, scale)
pfolded <- function(q, location, scale) pnorm(q, location, scale) - pnorm(-q, location, scale)
pmixture <- function(q, p) rowSums(sapply(seq(1, length(p), 3), function(i) p[i] * pnorm(q, p[i + 1], p[i + 2])))

# The distribution function of a type with its parameters in catalogue order.
distribution_functions <- list(
  "Normal" = function(q, p) pnorm(q, p[1], p[2]),
  "Log Normal" = function(q, p) plnorm(q, p[1], p[2]),
  "Folded Normal" = function(q, p) pfolded(q, p[1], p[2]),
  "Half Normal" = function(q, p) phalf(q, p[1]),
  "Rayleigh" = function(q, p) prayleigh(q, p[1]),
  "Weibull" = function(q, p) pweibull(q, p[2], p[1]),
  "Gaussian Mixture" = pmixture,
  "General Extreme Value" = function(q, p) evd::pgev(q, p[1], p[2], p[3]),
  "General Pareto" = function(q, p) evd::pgpd(q, 0, p[1], p[2]),
  "Poisson" = function(q, p) ppois(q, p[1]),
  "Geometric" = function(q, p) pgeom(q, p[1]),
  "Binomial" = function(q, p) pbinom(q, p[2], p[1]),
  "Bernoulli" = function(q, p) pbinom(q, 1, p[1]))

# ---- fits: parameters and log-likelihood ----
of_fitdist <- function(x, name, order, ...) {
  fit <- fitdist(x, name, ...)
  list(p = unname(fit$estimate[order]), l = fit$loglik)
}
continuous_fits <- list(
  "Normal" = function(x) of_fitdist(x, "norm", c("mean", "sd")),
  "Log Normal" = function(x) of_fitdist(x, "lnorm", c("meanlog", "sdlog")),
  "Folded Normal" = function(x) of_fitdist(x, "folded", c("location", "scale"), lower = c(0, 1e-9),
                                           start = list(location = mean(x), scale = sd(x))),
  "Half Normal" = function(x) of_fitdist(x, "half", "scale", start = list(scale = sd(x)), lower = 1e-9),
  "Rayleigh" = function(x) of_fitdist(x, "rayleigh", "scale", start = list(scale = sd(x)), lower = 1e-9),
  "Weibull" = function(x) of_fitdist(x, "weibull", c("scale", "shape")),
  "Gaussian Mixture" = function(x) {
    fit <- Mclust(x, G = 2, modelNames = "V", verbose = FALSE, control = emControl(tol = c(1e-12, 1e-12)))
    p <- fit$parameters
    list(p = as.vector(rbind(p$pro, p$mean, sqrt(p$variance$sigmasq))), l = fit$loglik)
  },
  "General Extreme Value" = function(x) {
    fit <- evd::fgev(x, std.err = FALSE)
    list(p = unname(fit$estimate), l = -fit$deviance / 2)
  },
  "General Pareto" = function(x) {
    fit <- evd::fpot(x, 0, model = "gpd", std.err = FALSE)
    list(p = unname(fit$estimate), l = -fit$deviance / 2)
  })
discrete_fits <- list(
  "Binomial" = function(x) {
    fit <- of_fitdist(x, "binom", "prob", fix.arg = list(size = max(x)), start = list(prob = mean(x) / max(x) * 0.9))
    list(p = c(fit$p, max(x)), l = fit$l)
  },
  "Poisson" = function(x) of_fitdist(x, "pois", "lambda"),
  "Geometric" = function(x) of_fitdist(x, "geom", "prob"),
  "Bernoulli" = function(x) {
    stopifnot(all(x %in% 0:1))
    of_fitdist(x, "binom", "prob", fix.arg = list(size = 1), start = list(prob = 0.5))
  })

column <- function(file) {
  x <- read.csv(file.path(folder, file))[[1]]
  x[!is.na(x)]
}
text <- function(x) paste(format(x, digits = 17, trim = TRUE), collapse = " ")

ks_statistic <- function(x, cdf, discrete) {
  if (!discrete) return(unname(suppressWarnings(ks.test(x, cdf)$statistic)))
  k <- 0:(max(x) + 1)
  max(abs(ecdf(x)(k) - cdf(k)))
}
ad_statistic <- function(x, cdf) unname(goftest::ad.test(x, cdf)$statistic)

print_fits <- function(file, kind) {
  x <- column(file)
  fits <- if (kind == "discrete") discrete_fits else continuous_fits
  for (name in names(fits)) {
    fit <- try({
      capture.output(f <- fits[[name]](x), type = "message")
      cdf <- function(q) distribution_functions[[name]](q, f$p)
      ad <- if (kind == "discrete") NA else ad_statistic(x, cdf)
      cat(file, name, text(f$p), text(f$l), text(ks_statistic(x, cdf, kind == "discrete")), text(ad), sep = ",")
      cat("\n")
    }, silent = TRUE)
  }
}

print_tests <- function(file, name, parameters) {
  p <- as.numeric(strsplit(parameters, " ")[[1]])
  test <- goftest::ad.test(column(file), function(q) distribution_functions[[name]](q, p))
  cat(file, name, text(unname(test$statistic)), text(unname(test$p.value)), sep = ",")
  cat("\n")
}

# ---- data ----
write_data <- function() {
  put <- function(name, heading, x) {
    x <- as.numeric(x)
    write.table(setNames(data.frame(x[!is.na(x)]), heading), file.path(folder, paste0(name, ".csv")),
                row.names = FALSE, quote = FALSE)
  }
  put("eruptions", "eruptions", faithful$eruptions)
  put("waiting", "waiting", faithful$waiting)
  put("ozone", "Ozone", airquality$Ozone)
  put("wind", "Wind", airquality$Wind)
  put("precip", "precip", precip)
  put("rivers", "rivers", rivers)
  put("islands", "islands", islands)
  put("quakes_mag", "mag", quakes$mag)
  put("trees_girth", "Girth", trees$Girth)
  put("trees_volume", "Volume", trees$Volume)
  put("cars_dist", "dist", cars$dist)
  put("chickwts", "weight", chickwts$weight)
  put("plant_growth", "weight", PlantGrowth$weight)
  put("iris_sepal_length", "Sepal.Length", iris$Sepal.Length)
  put("iris_petal_length", "Petal.Length", iris$Petal.Length)
  put("nile", "Nile", Nile)
  put("women_height", "height", women$height)
  put("morley_speed", "Speed", morley$Speed)
  put("mtcars_mpg", "mpg", mtcars$mpg)
  put("uspop", "uspop", uspop)
  data(groundbeef, package = "fitdistrplus", envir = environment())
  put("groundbeef", "serving", groundbeef$serving)
  data(endosulfan, package = "fitdistrplus", envir = environment())
  put("endosulfan", "ATV", endosulfan$ATV)
  put("portpirie", "sealevel", evd::portpirie)
  put("oxford", "temperature", evd::oxford)
  put("lisbon", "wind", evd::lisbon)
  put("discoveries", "discoveries", discoveries)
  put("quakes_stations", "stations", quakes$stations)
  put("warpbreaks", "breaks", warpbreaks$breaks)
  put("insect_sprays", "count", InsectSprays$count)
  put("mtcars_am", "am", mtcars$am)
  data(toxocara, package = "fitdistrplus", envir = environment())
  put("toxocara", "number", toxocara$number)
}

if (arguments[1] == "data") write_data()
if (arguments[1] == "fit") {
  kinds <- read.csv(arguments[3], header = FALSE)
  for (i in seq_len(nrow(kinds))) print_fits(kinds[i, 1], kinds[i, 2])
}
if (arguments[1] == "test") {
  fits <- read.csv(arguments[3], header = FALSE, colClasses = "character")
  for (i in seq_len(nrow(fits))) try(print_tests(fits[i, 1], fits[i, 2], fits[i, 3]), silent = TRUE)
}
