// What a person writes of a design: variables in the notation of distributions, correlations of pairs, and text files
// of such lines.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "host/jobs/base/job_fault.h"
#include "host/jobs/notation/distribution_notation.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt {

struct NotedCorrelation {
  std::string first;
  std::string second;
  double value = 0;
};

struct DesignText {
  std::vector<NotedVariable> variables;
  std::vector<NotedCorrelation> correlations;

  std::vector<std::string> Names() const;
};

// Lines of a text file: variables; "correlation h, a = 0.4". What follows a '#' at the beginning of a line, or after a blank
// behind the names, says nothing, and neither do empty lines.
// Adds the faults of all lines, each with its number, as faults of the field "fromFile". Throws Error if the file cannot
// be read. `others` as below.
void ReadDesignFile(const std::filesystem::path& file, const std::vector<std::string>* others,
                    DesignText& design, JobFaults& faults);

// The file's text for a design, which reads back as the same.
std::string TextOf(const DesignText& design);

// Adds a variable or a correlation in its notation, or a fault of the field. A correlation is "h,a=0.4": what stands
// before the last equals sign is a pair of names. Names may hold commas: of several ways to part them, one counts whose
// names are both known, of variables of the design or of `others`. If that is null, names may be unknown.
void AddVariable(const std::string& field, std::string_view text, DesignText& design, JobFaults& faults);
// The same of a name and a distribution apart, and of names and a number.
void AddVariable(const std::string& field, const std::string& name, std::string_view distribution,
                 DesignText& design, JobFaults& faults);
void AddCorrelation(const std::string& field, const NotedCorrelation& correlation,
                    const std::vector<std::string>* others, DesignText& design, JobFaults& faults);
void AddCorrelation(const std::string& field, std::string_view text, const std::vector<std::string>* others,
                    DesignText& design, JobFaults& faults);

// Adds the correlations of a square table (MatrixFromTable), each pair of its variables.
void AddCorrelations(const std::string& field, const Spreadsheet& table,
                     const std::vector<std::string>* others, DesignText& design, JobFaults& faults);

}  // namespace brenvolt
