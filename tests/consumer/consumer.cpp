// Reads a file and asks a distribution, as a program of someone else would: functions of the library, not headers alone.
#include <cstdio>

#include "host/numeric/distributions/normal.h"
#include "host/tables/csv.h"

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  std::printf("%zu cases, median %.1f\n", brenvolt::ReadCsv(argv[1]).CaseCount(),
              brenvolt::Distribution<brenvolt::Normal>(4.0, 1.0).Quantile(0.5));
  return 0;
}
