"""The sixteen distributions, with the parameters that fits report.

Every class has pdf, logpdf, cdf, sf, ppf, isf, mean, var, std and rvs, which take numbers or arrays as SciPy's do;
the discrete ones also pmf and logpmf. A parameter that is not valid raises ValueError, which names it.

    >>> from brenvolt.distributions import Weibull
    >>> Weibull(scale=83.35, shape=2.186).cdf(100)
    0.7744...

`offset` (threshold) shifts a distribution: with an offset c, its density at x is that of the plain one at x - c.
"""

from __future__ import annotations

import numbers as _numbers
import sys as _sys
from collections.abc import Iterable, Mapping
from typing import TYPE_CHECKING, Any

from ._brenvolt import Distribution as _Functions
from ._brenvolt import _distribution_names, _johnson_families

if TYPE_CHECKING:
    from numpy.typing import ArrayLike

__all__ = ["Distribution", "from_code", *_distribution_names]


class Distribution(_Functions):
    """The base of the sixteen distributions. Parameters are attributes, and listed in `parameters`."""

    def __init_subclass__(cls, **keywords: Any) -> None:
        super().__init_subclass__(**keywords)
        if cls.__name__ in _distribution_names:
            cls._code = _distribution_names.index(cls.__name__)

    def __init__(self, values: Iterable[float], offset: float = 0.0) -> None:
        if not hasattr(type(self), "_code"):
            raise TypeError("Distribution is what the sixteen have in common; make one of those, such as Normal")
        super().__init__(self._code, values, offset)

    def __getattr__(self, name: str) -> Any:
        parameters = {} if name.startswith("_") else self.parameters
        if name in parameters:
            return parameters[name]
        raise AttributeError(f"{type(self).__name__!r} object has no attribute {name!r}")

    def median(self) -> float:
        """The median, ppf(0.5)."""
        return self.ppf(0.5)

    def _arguments(self):
        return tuple(self._values) + ((self._offset,) if self._has_offset else ())

    def __reduce__(self):
        return type(self), self._arguments()

    def __eq__(self, other):
        return type(self) is type(other) and self._arguments() == other._arguments()

    def __hash__(self):
        return hash((type(self), repr(self._arguments())))

    def __repr__(self):
        return f"{type(self).__name__}({', '.join(f'{name}={value!r}' for name, value in self.parameters.items())})"


class _Discrete(Distribution):
    def pmf(self, x: ArrayLike) -> Any:
        """The probability of x."""
        return self.pdf(x)

    def logpmf(self, x: ArrayLike) -> Any:
        """The logarithm of pmf(x)."""
        return self.logpdf(x)


class Normal(Distribution):
    """Normal distribution with mean `location` and standard deviation `scale` > 0.

    pdf(x) = exp(-z**2 / 2) / (scale * sqrt(2 pi)), z = (x - location) / scale
    """

    def __init__(self, location: float, scale: float) -> None:
        super().__init__((location, scale))


class LogNormal(Distribution):
    """Log-normal distribution: ln(x - offset) is normal with mean `scale` and standard deviation `shape` > 0.

    cdf(x) = Phi((ln(x - offset) - scale) / shape) for x > offset
    """

    def __init__(self, scale: float, shape: float, offset: float = 0.0) -> None:
        super().__init__((scale, shape), offset)


class FoldedNormal(Distribution):
    """The magnitude of a normal variable with mean `location` and standard deviation `scale` > 0, shifted by `offset`.

    pdf(x) = phi((y - location) / scale) / scale + phi((y + location) / scale) / scale, y = x - offset >= 0
    """

    def __init__(self, location: float, scale: float, offset: float = 0.0) -> None:
        super().__init__((location, scale), offset)


class HalfNormal(Distribution):
    """The magnitude of a normal variable with mean 0 and standard deviation `scale` > 0, shifted by `offset`.

    cdf(x) = erf((x - offset) / (scale * sqrt(2))) for x >= offset
    """

    def __init__(self, scale: float, offset: float = 0.0) -> None:
        super().__init__((scale,), offset)


class Rayleigh(Distribution):
    """Rayleigh distribution with `scale` > 0.

    cdf(x) = 1 - exp(-((x - offset) / scale)**2 / 2) for x >= offset
    """

    def __init__(self, scale: float, offset: float = 0.0) -> None:
        super().__init__((scale,), offset)


class Weibull(Distribution):
    """Weibull distribution: `scale` > 0 is the characteristic life, `shape` > 0 the slope.

    cdf(x) = 1 - exp(-((x - offset) / scale)**shape) for x >= offset
    """

    def __init__(self, scale: float, shape: float, offset: float = 0.0) -> None:
        super().__init__((scale, shape), offset)


class GaussianMixture(Distribution):
    """Mixture of normal distributions, given as triples (proportion, mean, standard deviation).

    cdf(x) = sum of proportion * Phi((x - mean) / standard deviation); the proportions add up to 1.
    """

    def __init__(self, components: Iterable[tuple[float, float, float]]) -> None:
        super().__init__(_flat(components, 3, "components"))

    def _arguments(self):
        return (_groups(self._values, 3),)

    def __repr__(self):
        return f"GaussianMixture({_groups(self._values, 3)!r})"


class Johnson(Distribution):
    """Johnson's system: gamma + delta * g((x - xi) / lambda_) is standard normal.

    `type` is "SL" (g the logarithm), "SU" (the inverse hyperbolic sine), "SB" (the logit) or "SN" (the identity), or
    its code 1 to 4; delta and lambda_ > 0.
    """

    def __init__(self, type: str | float, gamma: float, delta: float, lambda_: float, xi: float) -> None:
        if isinstance(type, str):
            if type.upper() not in _johnson_families:
                raise ValueError(f"type must be one of {', '.join(_johnson_families)}, not {type!r}")
            type = _johnson_families.index(type.upper()) + 1
        super().__init__((type, gamma, delta, lambda_, xi))


class GeneralExtremeValue(Distribution):
    """Generalized extreme value distribution with `location`, `scale` > 0 and `shape`.

    cdf(x) = exp(-(1 + shape * (x - location) / scale)**(-1 / shape)); shape > 0 means a heavy upper tail (Frechet),
    shape < 0 a finite upper end (Weibull), 0 the Gumbel distribution. SciPy's genextreme has the opposite sign.
    """

    def __init__(self, location: float, scale: float, shape: float) -> None:
        super().__init__((location, scale, shape))


class GeneralPareto(Distribution):
    """Generalized Pareto distribution of exceedances over `offset`, with `scale` > 0 and `shape`.

    sf(x) = (1 + shape * (x - offset) / scale)**(-1 / shape) for x >= offset; shape > 0 means a heavy tail, shape < 0 a
    finite upper end, 0 the exponential distribution.
    """

    def __init__(self, scale: float, shape: float, offset: float = 0.0) -> None:
        super().__init__((scale, shape), offset)


class Triangular(Distribution):
    """Triangular distribution from `min` to `max` with its peak at `mode`; note the order of the parameters."""

    def __init__(self, min: float, max: float, mode: float) -> None:
        super().__init__((min, max, mode))


class Binomial(_Discrete):
    """Successes in a number of `trials`, each with the probability `proportion`.

    pmf(k) = C(trials, k) * proportion**k * (1 - proportion)**(trials - k)
    """

    def __init__(self, proportion: float, trials: float) -> None:
        super().__init__((proportion, trials))


class Poisson(_Discrete):
    """Poisson distribution with `mean` > 0.

    pmf(k) = exp(-mean) * mean**k / k!
    """

    def __init__(self, mean: float) -> None:
        super().__init__((mean,))


class Geometric(_Discrete):
    """Failures before the first success, each trial succeeding with the probability `proportion`.

    pmf(k) = proportion * (1 - proportion)**k for k = 0, 1, 2, ...; SciPy's geom counts the trials, from 1.
    """

    def __init__(self, proportion: float) -> None:
        super().__init__((proportion,))


class Bernoulli(_Discrete):
    """1 with the probability `proportion`, otherwise 0."""

    def __init__(self, proportion: float) -> None:
        super().__init__((proportion,))


class Histogram(_Discrete):
    """Any values with any probabilities, as a mapping {code: proportion} or pairs (code, proportion).

    The proportions add up to 1.
    """

    def __init__(self, classes: Mapping[float, float] | Iterable[tuple[float, float]]) -> None:
        pairs = classes.items() if hasattr(classes, "items") else classes
        super().__init__(_flat(pairs, 2, "classes"))

    def _arguments(self):
        return (_groups(self._values, 2),)

    def __repr__(self):
        return f"Histogram({dict(_groups(self._values, 2))!r})"


def _flat(groups, size, name):
    try:
        groups = [tuple(group) for group in groups]
    except TypeError:
        raise TypeError(f"{name} must be one or more groups of {size} numbers") from None
    if not groups or any(len(group) != size for group in groups):
        raise ValueError(f"{name} must be one or more groups of {size} numbers")
    return [number for group in groups for number in group]


def _groups(values, size):
    return [tuple(values[i:i + size]) for i in range(0, len(values), size)]


def from_code(code: int, values: Iterable[float], offset: float = 0.0) -> Distribution:
    """The distribution of a code, its place in the list of distributions from 0, with its values in catalogue order, as
    result tables and properties list them."""
    names = _distribution_names
    if not isinstance(code, _numbers.Integral):
        raise TypeError(f"code must be a whole number, not {type(code).__name__}")
    if not hasattr(values, "__iter__") or isinstance(values, (str, bytes)):
        raise TypeError(f"values must be a list of numbers, not {type(values).__name__}")
    if not 0 <= code < len(names):
        raise ValueError(f"no distribution of code {code}")
    kind = getattr(_sys.modules[__name__], names[code])
    if kind is GaussianMixture:
        return kind(_groups(list(values), 3))
    if kind is Histogram:
        return kind(_groups(list(values), 2))
    if offset and offset == offset:
        return kind(*values, offset)
    return kind(*values)
