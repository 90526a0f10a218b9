// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <climits>
#include <cstddef>
#include <ios>
#include <limits>
#include <new>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "reference/debug_text.h"
#include "support/allocation.h"
#include "support/assertions.h"
#include "support/values.h"
#include "tarntnla.h"

namespace {

template <int N>
using SmallMat = TnLaTSmallMat<static_cast<std::size_t>(N), static_cast<std::size_t>(N), double>;
template <int N>
using SmallVec = TnLaTSmallVec<N, double>;

// What object.debug(journal, arguments...) writes.
template <class T, class... Arguments>
std::string debugged(const T& object, Arguments... arguments) {
  std::ostringstream stream;
  TnJournal journal(stream);
  object.debug(journal, arguments...);
  EXPECT_TRUE(stream.good());
  return stream.str();
}

TnLaDblMat mat(std::size_t n_rows, const std::vector<double>& by_column) {
  return TnLaDblMat(by_column.data(), n_rows, by_column.size() / n_rows);
}
TnLaDblVec vec(const std::vector<double>& values) {
  return TnLaDblVec(values.data(), static_cast<int>(values.size()));
}
template <int N>
SmallMat<N> small_mat(const std::vector<double>& by_column) {
  SmallMat<N> m;
  for (std::size_t k = 0; k < m.size; ++k) m(k % m.n_rows(), k / m.n_rows()) = by_column[k];
  return m;
}

// --- Dense matrix ---------------------------------------------------------------------------------------

TEST(DenseMatrixDebug, EmptyMatrixTellsItsShape) {
  EXPECT_EQ(debugged(TnLaDblMat(), 6, false, 0), "\nempty TnLaDblMat with 0 rows and 0 columns!\n");
  EXPECT_EQ(debugged(TnLaDblMat(3, 0, 0.0), 6, true, 4), "\nempty TnLaDblMat with 3 rows and 0 columns!\n");
  EXPECT_EQ(debugged(TnLaDblMat(0, 5, 0.0), -3, true, 90),
            "\nempty TnLaDblMat with 0 rows and 5 columns!\n");
}

TEST(DenseMatrixDebug, EmptyMatrixCountsUnsigned) {
  constexpr std::size_t most = std::numeric_limits<std::size_t>::max();
  const std::string number = std::to_string(most);
  EXPECT_EQ(debugged(TnLaDblMat(0, most, 0.0), 6, false, 0),
            "\nempty TnLaDblMat with 0 rows and " + number + " columns!\n");
  EXPECT_EQ(debugged(TnLaDblMat(most, 0, 0.0), 6, false, 0),
            "\nempty TnLaDblMat with " + number + " rows and 0 columns!\n");
}

TEST(DenseMatrixDebug, PrintsRowByRowInColumnsOfDigitsPlusTen) {
  EXPECT_EQ(debugged(mat(2, {1, 2, 3, 4, -5, 6}), 2, false, 1),
            "     1.00e+00    3.00e+00   -5.00e+00\n"
            "     2.00e+00    4.00e+00    6.00e+00\n");
}

TEST(DenseMatrixDebug, FlagNamesTheRows) {
  EXPECT_EQ(debugged(mat(2, {1, 2, 3, 4}), 0, true, 2),
            "  row 0\n       1e+00     3e+00\n"
            "  row 1\n       2e+00     4e+00\n");
}

TEST(DenseMatrixDebug, FourValuesOfSixDigitsFitBesideAnIndentOfFour) {
  // (80 - 4 - 2) / 16 = 4
  EXPECT_EQ(debugged(mat(1, {1, 2, 3, 4, 5}), 6, false, 4),
            "        1.000000e+00    2.000000e+00    3.000000e+00    4.000000e+00\n"
            "        5.000000e+00\n");
}

// --- Dense vector ---------------------------------------------------------------------------------------

TEST(DenseVectorDebug, EmptyVectorSaysSo) {
  EXPECT_EQ(debugged(TnLaDblVec(), 6, 0), "\nempty TnLaDblVec!\n");
  EXPECT_EQ(debugged(TnLaDblVec(0, 0, 1.0), -3, 90), "\nempty TnLaDblVec!\n");
}

TEST(DenseVectorDebug, PrintsInColumnsOfDigitsPlusTen) {
  EXPECT_EQ(debugged(vec({1, -2.5, 1e100}), 1, 3), "       1.0e+00   -2.5e+00   1.0e+100\n");
}

TEST(DenseVectorDebug, PrintsTheDimensionNotTheCapacity) {
  TnLaDblVec v = vec({1, 2, 3});
  v.resize(1, true);
  EXPECT_EQ(debugged(v, 0, 0), "     1e+00\n");
}

TEST(DenseVectorDebug, SpecialValuesKeepTheirNames) {
  EXPECT_EQ(debugged(vec({kInf, -kInf, kNaN, -0.0}), 0, 0), "       inf      -inf       nan    -0e+00\n");
}

// --- Small matrix and vector ----------------------------------------------------------------------------

TEST(SmallMatrixDebug, PrintsAsTheDenseMatrixDoes) {
  EXPECT_EQ(debugged(small_mat<2>({1, 2, 3, 4}), 2, false, 1),
            "     1.00e+00    3.00e+00\n"
            "     2.00e+00    4.00e+00\n");
  EXPECT_EQ(debugged(small_mat<2>({1, 2, 3, 4}), 0, true, 2),
            "  row 0\n       1e+00     3e+00\n"
            "  row 1\n       2e+00     4e+00\n");
}

TEST(SmallVectorDebug, PrintsAsTheDenseVectorDoes) {
  const double values[] = {1, -2.5, 1e100};
  EXPECT_EQ(debugged(SmallVec<3>(values, 3), 1, 3), "       1.0e+00   -2.5e+00   1.0e+100\n");
}

// --- Layout, the same for all four ----------------------------------------------------------------------

struct Layout {
  int width;
  int per_line;
};

Layout layout(int digits, int indent) {
  const int width = digits + 10;
  return {width, (80 - indent - 2) / width};
}

// The same values in all four classes, against the printers' text for the stated layout.
template <int N>
void expect_layout(const std::vector<double>& values, int digits, bool flag, int indent) {
  SCOPED_TRACE(testing::Message() << "N " << N << " digits " << digits << " indent " << indent);
  const auto [width, per_line] = layout(digits, indent);
  const std::string matrix =
      reference::printed_matrix(flag, static_cast<std::size_t>(N), values, per_line, width, digits, indent);
  EXPECT_EQ(debugged(mat(static_cast<std::size_t>(N), values), digits, flag, indent), matrix);
  EXPECT_EQ(debugged(small_mat<N>(values), digits, flag, indent), matrix);

  const std::vector<double> column(values.begin(), values.begin() + N);
  const std::string vector = reference::printed(column, per_line, width, digits, indent);
  EXPECT_EQ(debugged(vec(column), digits, indent), vector);
  EXPECT_EQ(debugged(SmallVec<N>(column.data(), N), digits, indent), vector);
}

template <int... Less>
void expect_layout_for_every_dimension(Random& random, int digits, bool flag, int indent,
                                       std::integer_sequence<int, Less...>) {
  (expect_layout<Less + 1>(random.any_vector((Less + 1) * (Less + 1)), digits, flag, indent), ...);
}

TEST(DebugLayout, HoldsForEveryDimensionAndEveryNumberOfDigits) {
  Random random(24);
  for (int digits = -30; digits <= 30; ++digits) {
    if (digits == -10) continue;  // has no layout
    for (const int indent : {0, 3, 78 - 11 * (digits + 10), 79 - 11 * (digits + 10)}) {
      if (indent >= 300) continue;
      expect_layout_for_every_dimension(random, digits, digits % 2 == 0, indent,
                                        std::make_integer_sequence<int, 12>());
    }
  }
}

TEST(DebugLayout, HoldsForEveryIndent) {
  Random random(25);
  const std::vector<double> values = random.any_vector(144);
  for (int indent = -100; indent <= 130; ++indent) {
    expect_layout<12>(values, 0, indent % 2 == 0, indent);
    expect_layout<12>(values, -9, false, indent);
    expect_layout<12>(values, -11, false, indent);
    expect_layout<12>(values, -13, false, indent);
  }
}

TEST(DebugLayout, LineHasRoomForEightyCharacters) {
  const std::vector<double> ones(8, 1.0);
  const std::string value = "     1e+00";
  const std::string seven = value + value + value + value + value + value + value;
  EXPECT_EQ(debugged(vec(ones), 0, 8),
            reference::blanks(8) + seven + "\n" + reference::blanks(8) + value + "\n");
  EXPECT_EQ(debugged(vec(ones), 0, -2), seven + value + "\n");  // (80 + 2 - 2) / 10
  EXPECT_EQ(debugged(vec(ones), 0, -1), seven + "\n" + value + "\n");
}

TEST(DebugLayout, NegativeNumberPerLineIsOne) {
  EXPECT_EQ(debugged(vec({1, 2}), 0, 88),
            reference::blanks(88) + "     1e+00\n" + reference::blanks(88) + "     2e+00\n");
  EXPECT_EQ(debugged(vec({1, 2}), -11, 0), "1e+00\n2e+00\n");  // 78 / -1
}

TEST(DebugLayout, NegativeRoomOverNegativeWidthIsPositive) {
  // (80 - 82 - 2) / -2 = 2
  EXPECT_EQ(debugged(vec({1, 2, 3}), -12, 82),
            reference::blanks(82) + "1e+002e+00\n" + reference::blanks(82) + "3e+00\n");
}

TEST(DebugLayout, ExtremeArgumentsDoNotOverflow) {
  EXPECT_EQ(debugged(vec({1, 2}), 6, INT_MIN), "    1.000000e+00    2.000000e+00\n");
  EXPECT_EQ(debugged(vec({1, 2}), 0, INT_MIN + 78), "     1e+00     2e+00\n");
  EXPECT_EQ(debugged(vec({1, 2}), INT_MIN, 0), "1e+00\n2e+00\n");
  EXPECT_EQ(debugged(vec({1, 2}), INT_MIN, INT_MIN), "1e+00\n2e+00\n");
  EXPECT_EQ(debugged(mat(1, {1, 2}), 6, false, INT_MIN), "    1.000000e+00    2.000000e+00\n");
  EXPECT_EQ(debugged(mat(1, {1, 2}), INT_MIN, true, INT_MIN), "row 0\n1e+00\n2e+00\n");
}

// --- Width 0 --------------------------------------------------------------------------------------------

// A width of 0 is asserted once under `file` if anyone listens, and nothing is written.
template <class T, class... Flag>
void expect_no_width(const T& object, const char* file, Flag... flag) {
  for (const int indent : {0, 5, 78, 100, INT_MIN}) {
    EXPECT_EQ(debugged(object, -10, flag..., indent), "");
    const AssertionLog log;
    EXPECT_EQ(debugged(object, -10, flag..., indent), "");
    EXPECT_EQ(log.files(), Files({file}));
  }
  const ThrowingAssertions throwing;
  EXPECT_THROW(debugged(object, -10, flag..., 0), AssertionThrown);
}

template <int... Less>
void expect_no_width_for_every_dimension(std::integer_sequence<int, Less...>) {
  (expect_no_width(SmallMat<Less + 1>(), "src/tnlatsmallmat.cpp", true), ...);
  (expect_no_width(SmallVec<Less + 1>(), "src/tnlatsmallvec.cpp"), ...);
}

TEST(DebugWidthZero, IsAssertedAndNothingIsWritten) {
  expect_no_width(mat(2, {1, 2, 3, 4}), "src/tnla_matrix_vector.cpp", false);
  expect_no_width(mat(2, {1, 2, 3, 4}), "src/tnla_matrix_vector.cpp", true);
  expect_no_width(vec({1, 2}), "src/tnla_matrix_vector.cpp");
  expect_no_width_for_every_dimension(std::make_integer_sequence<int, 12>());
}

TEST(DebugWidthZero, NothingElseIsAsserted) {
  const AssertionLog log;
  Random random(26);
  for (const int digits : {-12, -11, -9, 0, 6})
    for (const int indent : {-3, 0, 90}) expect_layout<3>(random.vector(9), digits, true, indent);
  debugged(TnLaDblMat(), 6, false, 0);
  debugged(TnLaDblVec(), 6, 0);
  EXPECT_EQ(log.files(), Files());
}

// --- Reflection -----------------------------------------------------------------------------------------

std::string debugged_reflection(int j_pivot, int j_zero, std::vector<double> v, int indent) {
  return debugged(TnLaHouseholder(j_pivot, j_zero, static_cast<int>(v.size()), v.data(), 1), indent);
}

TEST(HouseholderDebug, PrintsTheReflectionAndItsScale) {
  // s = -5, up = 3 - s = 8, scale = 1 / (-5 * 8)
  EXPECT_EQ(debugged_reflection(0, 1, {3, 4}, 0),
            "Housholder transformation begin {\n\n"
            "  8 ... j_pivot_\n"
            "  4 ... j_zero_\n"
            "\n"
            "  -2./<u_, u_> = -0.025\n"
            "\nTnLaHouseholder end   }\n");
}

TEST(HouseholderDebug, IndentsItsLines) {
  EXPECT_EQ(debugged_reflection(0, 1, {3, 4}, 3),
            "   Housholder transformation begin {\n\n"
            "     8 ... j_pivot_\n"
            "     4 ... j_zero_\n"
            "\n"
            "     -2./<u_, u_> = -0.025\n"
            "\n   TnLaHouseholder end   }\n");
}

TEST(HouseholderDebug, NegativeIndentLeavesWhatIsLeftOfTheStep) {
  EXPECT_EQ(debugged_reflection(0, 1, {3, 4}, -1),
            "Housholder transformation begin {\n\n"
            " 8 ... j_pivot_\n"
            " 4 ... j_zero_\n"
            "\n"
            " -2./<u_, u_> = -0.025\n"
            "\nTnLaHouseholder end   }\n");
  EXPECT_EQ(debugged_reflection(0, 1, {3, 4}, INT_MIN),
            "Housholder transformation begin {\n\n"
            "8 ... j_pivot_\n"
            "4 ... j_zero_\n"
            "\n"
            "-2./<u_, u_> = -0.025\n"
            "\nTnLaHouseholder end   }\n");
}

TEST(HouseholderDebug, MarksPivotAndRangeWhereverTheyBegin) {
  // The entries 0 and 2 take no part and are zero.
  EXPECT_EQ(debugged_reflection(1, 3, {7, 3, 9, 4, 0}, 0),
            "Housholder transformation begin {\n\n"
            "  0\n"
            "  8 ... j_pivot_\n"
            "  0\n"
            "  4 ... j_zero_\n"
            "  0\n"
            "\n"
            "  -2./<u_, u_> = -0.025\n"
            "\nTnLaHouseholder end   }\n");
}

TEST(HouseholderDebug, EmptyRangeHasNoMark) {
  EXPECT_EQ(debugged_reflection(0, 2, {3, 4}, 0),
            "Housholder transformation begin {\n\n"
            "  0 ... j_pivot_\n"
            "  0\n"
            "\n"
            "  -2./<u_, u_> = 0\n"
            "\nTnLaHouseholder end   }\n");
}

TEST(HouseholderDebug, IdentityHasTheScaleZero) {
  EXPECT_EQ(debugged_reflection(0, 1, {1e-21, -1e-21}, 0),
            "Housholder transformation begin {\n\n"
            "  0 ... j_pivot_\n"
            "  -1e-21 ... j_zero_\n"
            "\n"
            "  -2./<u_, u_> = 0\n"
            "\nTnLaHouseholder end   }\n");
}

TEST(HouseholderDebug, ReflectionOfNothingHasNoEntries) {
  EXPECT_EQ(debugged_reflection(0, 0, {}, 0),
            "Housholder transformation begin {\n\n"
            "\n"
            "  -2./<u_, u_> = 0\n"
            "\nTnLaHouseholder end   }\n");
}

TEST(HouseholderDebug, PivotInTheRangeHasBothMarks) {
  // The entry counts twice: s = -2 sqrt(2), up = 2 - s, scale = 1 / (s * up); then s is taken for the
  // range's entry.
  EXPECT_EQ(debugged_reflection(0, 0, {2}, 0),
            "Housholder transformation begin {\n\n"
            "  -2.82843 ... j_pivot_ ... j_zero_\n"
            "\n"
            "  -2./<u_, u_> = -0.0732233\n"
            "\nTnLaHouseholder end   }\n");
}

TEST(HouseholderDebug, NumbersHaveTheFormatOfTheStream) {
  double v[] = {3, 4};
  const TnLaHouseholder reflection(0, 1, 2, v, 1);
  std::ostringstream stream;
  stream << std::scientific;
  stream.precision(1);
  TnJournal journal(stream);
  reflection.debug(journal, 0);
  EXPECT_EQ(stream.str(),
            "Housholder transformation begin {\n\n"
            "  8.0e+00 ... j_pivot_\n"
            "  4.0e+00 ... j_zero_\n"
            "\n"
            "  -2./<u_, u_> = -2.5e-02\n"
            "\nTnLaHouseholder end   }\n");
}

// There is no memory for that many blanks, and the step further in does not overflow.
TEST(HouseholderDebug, TheLargestIndentIsBadAllocAndWritesNothing) {
  double v[] = {3, 4};
  const TnLaHouseholder reflection(0, 1, 2, v, 1);
  std::ostringstream stream;
  TnJournal journal(stream);
  for (const int indent : {INT_MAX, INT_MAX - 1, INT_MAX - 2}) {
    const allocation::Failing failing(0);
    EXPECT_THROW(reflection.debug(journal, indent), std::bad_alloc);
  }
  EXPECT_EQ(stream.str(), "");
}

TEST(HouseholderDebug, AssertsNothing) {
  double v[] = {3, 4};
  const TnLaHouseholder reflection(0, 1, 2, v, 1);
  const AssertionLog log;
  debugged(reflection, 0);
  EXPECT_EQ(log.count(), 0u);
}

// --- The stream -----------------------------------------------------------------------------------------

TEST(Debug, BrokenStreamIsNoException) {
  std::ostringstream stream;
  stream.setstate(std::ios::failbit);
  EXPECT_THROW(stream.exceptions(std::ios::failbit), std::ios::failure);  // it is in force all the same
  ASSERT_EQ(stream.exceptions(), std::ios::failbit);
  TnJournal journal(stream);
  double v[] = {3, 4};
  EXPECT_NO_THROW(TnLaHouseholder(0, 1, 2, v, 1).debug(journal, 0));
  EXPECT_NO_THROW(TnLaDblMat().debug(journal, 6, true, 0));
  EXPECT_NO_THROW(mat(1, {1, 2}).debug(journal, 6, true, 0));
  EXPECT_NO_THROW(TnLaDblVec().debug(journal, 6, 0));
  EXPECT_NO_THROW(vec({1, 2}).debug(journal, 6, 0));
  EXPECT_NO_THROW(SmallMat<2>().debug(journal, 6, true, 0));
  EXPECT_NO_THROW(SmallVec<2>().debug(journal, 6, 0));
  EXPECT_EQ(stream.str(), "");
}

TEST(Debug, FormatOfTheStreamIsNotChanged) {
  std::ostringstream stream;
  stream.precision(3);
  const std::ios::fmtflags flags = stream.flags();
  TnJournal journal(stream);
  mat(1, {1, 2}).debug(journal, 6, true, 0);
  vec({1, 2}).debug(journal, 6, 0);
  EXPECT_EQ(stream.precision(), 3);
  EXPECT_EQ(stream.flags(), flags);
  EXPECT_EQ(stream.width(), 0);
}

}  // namespace
