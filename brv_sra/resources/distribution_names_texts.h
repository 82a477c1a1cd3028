// What people call the distributions: their names, which are also keys of variable properties, and the captions of their
// check boxes.
#pragma once

#include <array>

#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/string_resource.h"

namespace brenvolt::sra {

inline constexpr auto kDistributionTexts = std::to_array<StringResource>({
    {NameResource(DistributionCode::kNormal), "Normal"},
    {NameResource(DistributionCode::kLogNormal), "Log Normal"},
    {NameResource(DistributionCode::kFoldedNormal), "Folded Normal"},
    {NameResource(DistributionCode::kHalfNormal), "Half Normal"},
    {NameResource(DistributionCode::kRayleigh), "Rayleigh"},
    {NameResource(DistributionCode::kWeibull), "Weibull"},
    {NameResource(DistributionCode::kGaussianMixture), "Gaussian Mixture"},
    {NameResource(DistributionCode::kJohnson), "Johnson"},
    {NameResource(DistributionCode::kGeneralExtremeValue), "General Extreme Value"},
    {NameResource(DistributionCode::kGeneralPareto), "General Pareto"},
    {NameResource(DistributionCode::kTriangular), "Triangular"},
    {NameResource(DistributionCode::kBinomial), "Binomial"},
    {NameResource(DistributionCode::kPoisson), "Poisson"},
    {NameResource(DistributionCode::kGeometric), "Geometric"},
    {NameResource(DistributionCode::kBernoulli), "Bernoulli"},
    {NameResource(DistributionCode::kHistogram), "Histogram"},
    {FitCheckResource(DistributionCode::kNormal), "Nor&mal"},
    {FitCheckResource(DistributionCode::kLogNormal), "&Log-Normal"},
    {FitCheckResource(DistributionCode::kFoldedNormal), "Folded normal"},
    {FitCheckResource(DistributionCode::kHalfNormal), "Half normal "},
    {FitCheckResource(DistributionCode::kRayleigh), "&Rayleigh"},
    {FitCheckResource(DistributionCode::kWeibull), "Weib&ull"},
    {FitCheckResource(DistributionCode::kGaussianMixture), "&Gaussian mixture"},
    {FitCheckResource(DistributionCode::kJohnson), "&Johnson distribution (general non-normal, single mode)"},
    {FitCheckResource(DistributionCode::kGeneralExtremeValue), "Generalized Extreme Value"},
    {FitCheckResource(DistributionCode::kGeneralPareto), "Generalized Pareto"},
    {FitCheckResource(DistributionCode::kTriangular), "Triangular"},
    {FitCheckResource(DistributionCode::kBinomial), "Binomial"},
    {FitCheckResource(DistributionCode::kPoisson), "Poisson"},
    {FitCheckResource(DistributionCode::kGeometric), "Geometric"},
    {FitCheckResource(DistributionCode::kBernoulli), "Bernoulli"},
    {FitCheckResource(DistributionCode::kHistogram), "Histogram"},
});

}  // namespace brenvolt::sra
