"""Rank correlation by the method of Iman & Conover (1982) in NumPy: what bench/compare times ours against."""
import numpy as np
from scipy.linalg import solve_triangular
from scipy.stats import norm


def induce(samples, target, rng):
    """The columns of `samples` (n x k), each in an order that gives them the rank correlation `target` (k x k).

    Van der Waerden scores in random orders, freed of their chance correlation and given the target's, tell each
    column its ranks.
    """
    n, k = samples.shape
    score = norm.ppf(np.arange(1, n + 1) / (n + 1))
    scores = np.empty((n, k))
    for j in range(k):
        scores[:, j] = rng.permutation(score)
    chance = np.linalg.cholesky(np.corrcoef(scores, rowvar=False))
    transform = np.linalg.cholesky(target) @ solve_triangular(chance, np.eye(k), lower=True)
    correlated = scores @ transform.T
    ordered = np.empty_like(samples)
    for j in range(k):
        ordered[np.argsort(correlated[:, j]), j] = np.sort(samples[:, j])
    return ordered
