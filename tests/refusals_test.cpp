// What the command says when something is wrong.
#include <gtest/gtest.h>

#include <map>

#include "tests/command_fixture.h"

namespace brenvolt::test {
namespace {

// What a wrong input is answered with. Every line says what and where, and nothing in the folder changes.
TEST_F(Command, WrongInputGetsOneClearLineAndChangesNothing) {
  MustRun({"fit", kExamples + "faithful.csv", "--save", "good.bvw"});
  const std::string good = BytesOf(File("good.bvw"));
  WriteBytes(File("empty.csv"), "");
  WriteBytes(File("ragged.csv"), "a,b\n1,2\n3\n");
  WriteBytes(File("text.csv"), "a\nx\ny\n");
  WriteBytes(File("constant.csv"), "a,b\n3,NA\n3,NA\n3,NA\n3,NA\n");
  WriteBytes(File("infinite.csv"), "a\n3\ninf\n4\n");
  WriteBytes(File("weights.csv"), "a,w\n3,1\n4,1.5\n5,1\n8,1\n");
  WriteBytes(File("labels.csv"), "a,t\n3,x\n4,y\n5,x\n");
  WriteBytes(File("no_project.bvw"),
             "just text, long enough to look like something, but no project at all\n");
  WriteBytes(File("mirror.csv"),
             ",a,b\na,1,0.5\nb,0.26,1\nMeans,0,0\nStd.Dev.,1,1\nNo.Cases,9,\nMatrix,1,\n");
  WriteBytes(File("other_matrix.csv"),
             ",x,eruptions\nx,1,0.5\neruptions,0.5,1\nMeans,0,0\nStd.Dev.,1,1\nNo.Cases,9,\nMatrix,1,\n");
  WriteBytes(File("hole.csv"),
             ",eruptions,waiting\neruptions,1,\nwaiting,0.5,1\nMeans,0,0\nStd.Dev.,1,1\nNo.Cases,9,\n"
             "Matrix,1,\n");
  WriteBytes(File("empty.bvw"), "");
  WriteBytes(File("cut.bvw"), good.substr(0, good.size() / 2));
  WriteBytes(File("newer.bvw"), good);
  Sql("newer.bvw", "PRAGMA user_version = 99");
  for (const char* name :
       {"nonsense.bvw", "zero.bvw", "order.bvw", "truncation.bvw", "endless.bvw", "renamed.csv"})
    WriteBytes(File(name), good);
  WriteBytes(File("alone.bvw"), good);
  Sql("alone.bvw", "UPDATE sheet SET name = 'other matrix' WHERE name = 'Correlation matrix'");
  Sql("nonsense.bvw", "UPDATE variable_property SET value = 'tomorrow' WHERE key NOT LIKE 'z%'");
  Sql("zero.bvw", "UPDATE variable_property SET value = '(Location=1; Scale=-3)' WHERE key = 'Normal'");
  Sql("order.bvw", "DELETE FROM variable_property WHERE key = 'Normal'");
  Sql("truncation.bvw", "UPDATE variable_property SET value = '(0; 0)' WHERE key = 'zTruncProp'");

  Sql("endless.bvw",
      "UPDATE variable_property SET value = '(Scale=3; Shape=1e-300; Offset=0)' WHERE key = 'Weibull'");
  Sql("endless.bvw", "UPDATE variable_property SET value = 'Weibull;' WHERE key = 'zOrder'");

  struct Case {
    std::vector<std::string> arguments;
    int status;
    const char* said;
  };
  const Case cases[] = {
      {{"fit", "nowhere.csv"}, 1, "nowhere.csv"},
      {{"fit", "."}, 1, "folder"},
      {{"fit", "empty.csv"}, 1, "is empty (empty.csv)"},
      {{"fit", "ragged.csv"}, 1, "ragged.csv, line 3, column"},
      {{"fit", "text.csv"}, 1, "no numeric variable"},
      {{"fit", "text.csv", "--continuous", "a"}, 1, "text variables selected"},
      {{"fit", "constant.csv", "--continuous", "a"},
       1,
       "No valid variables to proceed with the analysis (a: all values equal)"},
      {{"fit", "infinite.csv"}, 1, "variable a contains an infinite value (case 2; leave"},
      {{"fit", "weights.csv", "--weights", "w"}, 1, "Case weights should be integer."},
      {{"fit", "weights.csv", "--weights", "v"}, 2, "sheet weights has no variable called 'v' (--weights)"},
      {{"fit", "weights.csv", "--continuous", "b"},
       2,
       "sheet weights has no variable called 'b' (--continuous)"},
      {{"fit", "weights.csv", "--select", "a > "}, 2, "selection condition, character"},
      {{"fit", "weights.csv", "--distributions", "gauss"},
       2,
       "no distribution called 'gauss'; the distributions are normal,"},
      {{"fit", "weights.csv", "--distributions", "norml"},
       2,
       "no distribution called 'norml'; did you mean normal? The distributions are normal,"},
      {{"fit", kExamples + "faithful.csv", "--continuous", "eruption"},
       2,
       "sheet faithful has no variable called 'eruption'; did you mean eruptions? (--continuous)"},
      {{"score", kExamples + "ozone.csv", "--model", "m.pmml"},
       2,
       "unknown option --model; MODEL stands by its place, without an option before it. brenvolt score "
       "--help"},
      {{"help", "period"}, 2, "no topic 'period'; these options are called so: fit --return-periods"},
      {{"help", "quantile"}, 2, "no topic 'quantile'; did you mean quantiles?"},
      {{"help", "distribution"},
       2,
       "no topic 'distribution'; did you mean distributions? The topics are fit,"},
      {{"show", kExamples + "faithful.csv"}, 1, "the file is not a project; import makes one of a data file"},
      {{"fit", kExamples + "faithful.csv", "--continuous", "waiting, waiting"},
       2,
       "'waiting' is given twice (--continuous)"},
      {{"fit", "weights.csv", "--select", "not"},
       2,
       "selection condition, character 4: the formula is incomplete (--select)"},
      {{"fit", "weights.csv", "--select", "a = w = 1"}, 2, "selection condition, character 7: "},
      {{"fit", "weights.csv", "--offset", "a:weibull=1", "--offset", "a:Weibull=2"},
       2,
       "'a:weibull' is given twice (--offset)"},
      {{"fit", "weights.csv", "--discrete", "a", "--trials", "a=3", "--trials", "a=4"},
       2,
       "'a' is given twice (--trials)"},
      {{"fit", "weights.csv", "--discrete", "a", "--johnson-percentiles"},
       2,
       "no continuous variable is fitted (--johnson-percentiles)"},
      {{"fit", "weights.csv", "--discrete", "a", "--rank-by", "ks"},
       2,
       "no continuous variable is fitted (--rank-by)"},
      {{"fit", "weights.csv", "--discrete-rank-by", "ks"},
       2,
       "no discrete variable is fitted (--discrete-rank-by)"},
      {{"fit", "weights.csv", "--offset", "a=3"},
       2,
       "expected VARIABLE:DISTRIBUTION=NUMBER, got 'a=3' (--offset)"},
      {{"fit", "weights.csv", "--save", ""}, 2, "expected a value, got an empty text (--save)"},
      {{"fit", "weights.csv", "--save="}, 2, "expected a value, got an empty text (--save)"},
      {{"fit", ""}, 2, "expected a value, got an empty text (argument 2)"},
      {{"fit", "text.csv", "--distributions", "normal"}, 1, "no numeric variable; these are text: a"},
      {{"fit", "weights.csv", "--missing", "never"},
       2,
       "expected one of casewise, pairwise; got 'never' (--missing)"},
      {{"fit", "weights.csv", "--offset", "a:weibull=-444"}, 2, "-444 means that no offset is set"},
      {{"fit", "weights.csv", "--offset", "a:normal=1"}, 2, "the normal distribution has no offset"},
      {{"fit", "weights.csv", "--offset", "a:weibull=1,5"}, 2, "expected a number, got '1,5' (--offset)"},
      {{"fit", "weights.csv", "--distributions", "normal", "--offset", "a:weibull=1"},
       2,
       "the weibull distribution is not tried (--offset)"},
      {{"fit", "weights.csv", "--continuous", "a", "--offset", "w:weibull=1"},
       2,
       "'w' is not fitted as a continuous variable"},
      {{"fit", "weights.csv", "--offset", "b:weibull=1"}, 2, "'b' is not fitted as a continuous variable"},
      {{"fit", "weights.csv", "--distributions", "poisson"}, 2, "none of these is for continuous variables"},
      {{"fit", "weights.csv", "--discrete", "a", "--distributions", "normal"},
       2,
       "none of these is for discrete"},
      {{"fit", "weights.csv", "--mixtures", "a"}, 2, "expected VARIABLE=COUNT, got 'a' (--mixtures)"},
      {{"fit", "weights.csv", "--mixtures", "a=0"}, 2, "'a': expected a whole number from 2 to 20, got 0"},
      {{"fit", "weights.csv", "--mixtures", "a=2.5"}, 2, "got 2.5 (--mixtures)"},
      {{"fit", "weights.csv", "--distributions", "normal", "--mixtures", "a=3"},
       2,
       "is not tried (--mixtures)"},
      {{"fit", "weights.csv", "--discrete", "a", "--mixtures", "a=3"}, 2, "not fitted as a continuous"},
      {{"fit", "weights.csv", "--trials", "a=4"}, 2, "no discrete variable is fitted (--trials)"},
      {{"fit", "weights.csv", "--discrete", "a", "--trials", "w=4"},
       2,
       "'w' is not fitted as a discrete variable"},
      {{"fit", "weights.csv", "--discrete", "a", "--trials", "a=0"}, 2, "from 1 to 2147483647, got 0"},
      {{"fit", "weights.csv", "--discrete", "a", "--trials", "a=9", "--distributions", "poisson"},
       2,
       "is not tried (--trials)"},
      {{"fit", "weights.csv", "--distributions", "normal", "--johnson-percentiles"}, 2, "is not tried"},
      {{"fit", "weights.csv", "--truncate", "a=1:2"}, 2, "the fits are not saved"},
      {{"fit", "weights.csv", "--truncate", "a=1", "--save", "n.bvw"}, 2, "VARIABLE=LOW:HIGH, got 'a=1'"},
      {{"fit", "weights.csv", "--truncate", "a=2:2", "--save", "n.bvw"}, 2, "less than the upper one"},
      {{"fit", "weights.csv", "--truncate", "a=x:", "--save", "n.bvw"}, 2, "a number, got 'x' (--truncate)"},
      {{"fit", "weights.csv", "--truncate", "a=-444:", "--save", "n.bvw"},
       2,
       "-444 means that no bound is set"},
      {{"fit", "weights.csv", "--truncate", "b=1:", "--save", "n.bvw"}, 2, "'b' is not fitted"},
      {{"fit", "weights.csv", "--continuous", "a", "--truncate", "w=1:", "--save", "n.bvw"},
       2,
       "'w' is not fitted (--truncate)"},
      {{"fit", "weights.csv", "--order", "a=", "--save", "n.bvw"}, 2, "VARIABLE=NAME,NAME, got 'a='"},
      {{"fit", "weights.csv", "--order", "a=normal,normal", "--save", "n.bvw"}, 2, "'normal' is given twice"},
      {{"fit", "weights.csv", "--order", "a=poisson", "--save", "n.bvw"},
       2,
       "'a': the poisson distribution is for discrete variables (--order)"},
      {{"fit", "weights.csv", "--distributions", "normal", "--order", "a=weibull", "--save", "n.bvw"},
       2,
       "the weibull distribution is not tried (--order)"},
      {{"fit", "weights.csv", "--graphs", "no/such/g.json"},
       2,
       "the folder of no/such/g.json does not exist (--graphs)"},
      {{"fit", "weights.csv", "--rank-by", "best"}, 2, "--rank-by"},
      {{"fit", "weights.csv", "--rank-by", "aci"}, 2, "got 'aci'; did you mean aic? (--rank-by)"},
      {{"fit", "weights.csv", "--format", "jsno"}, 2, "got 'jsno'; did you mean json? (--format)"},
      {{"fit", "weights.csv", "--delimitr", ";"},
       2,
       "unknown option --delimitr; did you mean --delimiter? brenvolt fit --help shows what there is"},
      {{"fit", "weights.csv", "--record", "no/r.py"}, 2, "the folder of no/r.py does not exist (--record)"},
      {{"fit", "weights.csv", "more", "yet"}, 2, "unexpected argument 'more'; brenvolt fit --help"},
      {{"fit", "weights.csv", "--bogus", "3"}, 2, "unknown option --bogus; brenvolt fit --help"},
      {{"fit"}, 2, "missing DATA; brenvolt fit --help"},
      {{"fit", "weights.csv", "--discreet=a"},
       2,
       "unknown option --discreet=a; did you mean --discrete? brenvolt fit --help shows what there is"},
      {{"fti", "weights.csv"}, 2, "unknown command 'fti'; did you mean fit? The commands are fit, design"},
      {{"help", "simulat"}, 2, "no topic 'simulat'; did you mean simulate? The topics are fit, design"},
      {{"fit", "weights.csv", "--intervals", "profile"},
       2,
       "no quantile is asked for, and no probability or return level (--intervals)"},
      {{"fit", "weights.csv", "--quantiles", "0.1", "--intervals", "profil"},
       2,
       "expected one of covariance, profile; got 'profil'; did you mean profile? (--intervals)"},
      {{"fit", "weights.csv", "--top", "0"}, 2, "expected a whole number from 1 to 1000, got 0 (--top)"},
      {{"fit", "weights.csv", "--sheet"}, 2, "--sheet needs a value"},
      {{"fit", "weights.csv", "--save", "x.bvw", "--save", "y.bvw"}, 2, "--save is given more than once"},
      {{"fit", "weights.csv", "--format", "xml"}, 2, "expected table, json or csv, got 'xml' (--format)"},
      {{"fit", "good.bvw", "--decimal-comma"},
       2,
       "this applies to text files, and the data are a project (--decimal-comma)"},
      {{"fit", "good.bvw", "--delimiter", "tab"},
       2,
       "this applies to text files, and the data are a project (--delimiter)"},
      {{"fit", "weights.csv", "--delimiter", "5"}, 2, "tab, bar, or blanks, got '5' (--delimiter)"},
      {{"fit", "weights.csv", "--header", "999"}, 2, "the file has no line 999"},
      {{"import", "weights.csv", "-o", "x.bvw", "--kind", "foo"},
       2,
       "expected data or matrix, got 'foo' (--kind)"},
      {{"export", "good.bvw", "-o", "x.txt"},
       2,
       "expected a file ending in .csv, .npz, .xlsx, .sav or .dta, got x.txt (-o)"},
      {{"typelib", "--idl", "--format", "json"}, 2, "--idl is a format of its own"},
      {{"fit", "weights.csv", "--discrete", "a", "--discrete-rank-by", "anderson-darling"},
       2,
       "--discrete-rank-by"},
      {{"fit", "weights.csv", "--binning", "equal"}, 2, "--binning"},
      {{"fit", "weights.csv", "--select", "a > 1e9"}, 2, "no case meets the condition 'a > 1e9' (--select)"},
      {{"fit", "weights.csv", "--bootstrap", "0"}, 2, "--bootstrap"},
      {{"fit", "weights.csv", "--bootstrap", "1000001"}, 2, "--bootstrap"},
      {{"fit", "weights.csv", "--bootstrap-seed", "4"}, 2, "a seed has no effect without a bootstrap"},
      {{"fit", "weights.csv", "--bootstrap", "9", "--bootstrap-seed", "-1"}, 2, "--bootstrap-seed"},
      {{"fit"}, 2, "DATA"},
      {{"dance"}, 2, "unknown command 'dance'; the commands are fit, design, simulate"},
      {{}, 2, "missing command; the commands are fit, design, simulate"},
      {{"fit", "good.bvw", "--sheet", "other"},
       1,
       "has no sheet called other; its sheets are faithful, Correlation matrix (good.bvw)"},
      {{"show", "good.bvw", "other"},
       1,
       "has no sheet called other; its sheets are faithful, Correlation matrix (good.bvw)"},
      {{"show", "nowhere.bvw"}, 1, "nowhere.bvw"},
      {{"show", "no_project.bvw"}, 1, "no_project.bvw"},
      {{"show", "empty.bvw"}, 1, "empty.bvw"},
      {{"show", "cut.bvw"}, 1, "cut.bvw"},
      {{"show", "newer.bvw"}, 1, "newer"},
      {{"simulate", "good.bvw", "--variables", "x"}, 2, "no variable called 'x'"},
      {{"simulate", "good.bvw", "--samples", "0"}, 2, "whole number from 1 to 1000000000000, got 0"},
      {{"simulate", "good.bvw", "--samples", "1e10", "--method", "latin-hypercube"},
       2,
       "only be drawn by monte-carlo"},
      {{"simulate", "good.bvw", "--samples", "1e10", "--method", "monte-carlo", "-o", "new.bvw"},
       2,
       "more than 2147483647 samples"},
      {{"simulate", "good.bvw", "--samples", "999999999", "-o", "huge.bvw"}, 1, "Insufficient memory exists"},
      {{"simulate", "good.bvw", "--seed", "-1"}, 2, "from 0 to 2147483647, got -1 (--seed)"},
      {{"simulate", "good.bvw", "--seed", "99999999999"},
       2,
       "expected a whole number from 0 to 2147483647, got 99999999999 (--seed)"},
      {{"simulate", "good.bvw", "--method", "monte-carlo", "--matrix", "Correlation matrix"},
       2,
       "monte-carlo does not (--matrix)"},
      {{"simulate", "good.bvw", "--method", "iman-conover", "--matrix", "nowhere"},
       1,
       "is neither a sheet of the project nor a file (matrix nowhere)"},
      {{"simulate", "good.bvw", "--method", "iman-conover", "--matrix", "faithful"},
       1,
       "Simulation failed. Please check the correlation matrix. (sheet faithful: is not a matrix file)"},
      {{"simulate", "good.bvw", "--method", "iman-conover", "--matrix", "good.bvw:none"}, 1, "called none"},
      {{"simulate", "good.bvw", "--method", "iman-conover", "--matrix", "other_matrix.csv"},
       1,
       "The correlation matrix lacks variables of the simulation: waiting"},
      {{"simulate", "good.bvw", "--method", "iman-conover", "--matrix", "hole.csv"},
       1,
       "(hole.csv, row eruptions, column waiting)"},
      {{"simulate", "good.bvw", "--method", "iman-conover", "--matrix", "mirror.csv"}, 1, "not symmetric"},
      {{"simulate", "alone.bvw", "--method", "iman-conover"}, 1, "no correlation matrix is given"},
      {{"simulate", "good.bvw", "--seed", "x"}, 2, "expected a number, got 'x' (--seed)"},
      {{"simulate", "good.bvw", "--method", "magic"}, 2, "--method"},
      {{"simulate", "good.bvw", "-o", "out.pdf"}, 2, "out.pdf"},
      {{"simulate", "nonsense.bvw"}, 1, "One or more property values are invalid."},
      {{"simulate", "zero.bvw"}, 1, "Invalid scale value for Normal distribution of variable"},
      {{"simulate", "order.bvw"},
       1,
       "Normal in order of distribution property has its parameter property missing."},
      {{"simulate", "truncation.bvw"}, 1, "Truncate property is missing or invalid."},
      {{"simulate", "good.bvw", "-o", "/dev/full"}, 1, "/dev/full"},
      {{"simulate", "good.bvw", "-o", "good.bvw/x.csv"},
       2,
       "the folder of good.bvw/x.csv does not exist (-o)"},
      {{"export", "good.bvw", "-o", "/dev/full"}, 1, "/dev/full"},
      {{"export", "good.bvw:none", "-o", "x.csv"}, 1, "has no sheet called none"},
      {{"fit", "weights.csv", "--save", "no/such/folder/p.bvw"}, 2, "no/such/folder/p.bvw does not exist"},
      {{"fit", "weights.csv", "--save", "/dev/full"},
       2,
       "expected a file ending in .bvw, got /dev/full (--save)"},
      {{"fit", "weights.csv", "--save", "/proc/p.bvw"}, 1, "/proc/p.bvw"},
      {{"fit", "weights.csv", "--continuous", "a,a"}, 2, "'a' is given twice (--continuous)"},
      {{"fit", "weights.csv", "--continuous", "a", "--discrete", "a"}, 2, "as continuous and as discrete"},
      {{"fit", "labels.csv", "--continuous", "a", "--weights", "t"}, 1, "Case weights should be integer."},
      {{"fit", "good.bvw", "--format", "xml"}, 2, "--format"},
      {{"export", "good.bvw", "-o", "good.bvw"},
       2,
       "expected a file ending in .csv, .npz, .xlsx, .sav or .dta, got good.bvw (-o)"},
      {{"export", "renamed.csv", "-o", "renamed.csv"}, 2, "would replace renamed.csv, which is read (-o)"},
      {{"export", "good.bvw", "-o", "renamed.csv"},
       1,
       "this would replace a project by a file of another kind; choose another name (renamed.csv)"},
      {{"simulate", "good.bvw", "-o", "/proc/x.csv"}, 1, "/proc/x.csv"},
      {{"simulate", "weights.csv"}, 1, "weights.csv"},
      {{"simulate", "endless.bvw"}, 1, "Simulation failed.  Please review"},
      {{"import", "good.bvw", "-o", "other.bvw"}, 1, "is already a project (good.bvw)"},
      {{"import", "weights.csv", "-o", "other.csv"}, 2, "expected a file ending in .bvw, got other.csv (-o)"},
      {{"import", "weights.csv", "-o", "other.bvw", "--name", "\xff"}, 2, "not UTF-8"},
      {{"fit", "weights.csv", "--save", "no_project.bvw"}, 1, "no_project.bvw"},
      {{"import", "ragged.csv", "-o", "good.bvw"}, 1, "ragged.csv, line 3"},
      {{"import", "mirror.csv", "-o", "good.bvw"},
       1,
       "the matrix is not symmetric: 0.26 in row b, column a, but 0.5 in row a, column b (mirror.csv)"},
      {{"import", "weights.csv", "-o", "good.bvw", "--kind", "matrix"}, 1, "is not a matrix"},
      {{"import", "weights.csv", "-o", "good.bvw", "--kind", "graph"}, 2, "--kind"},
  };
  const auto contents = [&] {
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path())) {
      files[entry.path().filename()] = BytesOf(entry.path());
    }
    return files;
  };
  const auto before = contents();
  for (const Case& c : cases) {
    std::string call;
    for (const std::string& argument : c.arguments) call += " " + argument;
    const Outcome outcome = Run(c.arguments);
    EXPECT_EQ(outcome.status, c.status) << call << ": " << outcome.err;
    EXPECT_NE(outcome.err.find(c.said), std::string::npos) << call << ": " << outcome.err;
    EXPECT_TRUE(outcome.err.starts_with("brenvolt: ")) << call << ": " << outcome.err;
    EXPECT_EQ(std::ranges::count(outcome.err, '\n'), 1) << call << ": " << outcome.err;
  }
  EXPECT_TRUE(contents() == before) << "a file appeared, vanished or changed";
}

TEST_F(Command, WordThatIsNoNumberHidesNoOtherFault) {
  WriteBytes(File("d.csv"), "x\n1\n2\n4\n");
  const Outcome refused =
      Run({"fit", "d.csv", "--offset", "x:weibull=a", "--bootstrap", "b", "--rank-by", "c"});
  EXPECT_EQ(refused.status, 2);
  EXPECT_EQ(refused.err,
            "brenvolt: expected a number, got 'a' (--offset)\n"
            "brenvolt: expected a number, got 'b' (--bootstrap)\n"
            "brenvolt: expected one of aic, anderson-darling, bic, chi-square, ks; got 'c' (--rank-by)\n");
}

}  // namespace
}  // namespace brenvolt::test
