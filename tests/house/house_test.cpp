// What holds for every source: floors, sizes, no circles.
#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>

#include "floors.h"
#include "sources.h"

namespace house {
namespace {

constexpr std::size_t kLongestFile = 500;
constexpr std::size_t kLongestFunction = 60;

// The test runs somewhere below the repository's root.
std::string root() {
  std::filesystem::path folder = std::filesystem::current_path();
  while (!exists(folder / "src/main.cpp") && folder.has_relative_path()) folder = folder.parent_path();
  return folder;
}

const std::map<std::string, Source>& tree() {
  static const auto kTree = readTree(root(), {"src", "platform", "tools", "tests", "bench", "fuzz"});
  return kTree;
}

/** The row that fits a path best, nullptr if none does. */
template <class Rows, class Path>
auto rowOf(const Rows& rows, Path path, std::string_view file) {
  auto best = rows.end();
  for (auto row = rows.begin(); row != rows.end(); ++row)
    if (file.starts_with(path(*row)) && (best == rows.end() || path(*best).size() < path(*row).size()))
      best = row;
  return best == rows.end() ? nullptr : &*best;
}

/** The floor of a file of the daemon; the others have none. */
int floorOf(std::string_view file) {
  const Floor* row = rowOf(
      kFloors, [](const Floor& floor) { return floor.path; }, file);
  return row == nullptr ? 0 : row->number;
}

bool goesUp(std::string_view from, std::string_view to) {
  return floorOf(from) != 0 && floorOf(to) > floorOf(from);
}

bool sees(std::string_view from, std::string_view to) {
  const View* row = rowOf(
      kViews, [](const View& view) { return view.folder; }, from);
  return row == nullptr || to.starts_with(row->folder) ||
         std::ranges::any_of(row->sees,
                             [&](std::string_view seen) { return !seen.empty() && to.starts_with(seen); });
}

/** Whether a file of the daemon may call a service of the platform, if it is one. */
bool mayCall(std::string_view from, std::string_view to) {
  const auto* service = std::ranges::find(kServices, to, &Service::header);
  return !from.starts_with("src/") || service == kServices.end() ||
         std::ranges::any_of(service->callers, [&](std::string_view caller) {
           return !caller.empty() && from.starts_with(caller);
         });
}

TEST(House, EveryQuotedIncludeNamesAFileOfTheRepository) {
  ASSERT_GT(tree().size(), 150U);
  for (const auto& [path, source] : tree())
    for (const std::string& included : source.includes)
      EXPECT_NE(resolve(tree(), path, included), "") << path << " includes " << included;
}

TEST(House, IncludesGoDown) {
  for (const auto& [from, included] : includeGraph(tree()))
    for (const std::string& to : included) {
      EXPECT_FALSE(goesUp(from, to)) << from << " (floor " << floorOf(from) << ") includes " << to
                                     << " (floor " << floorOf(to) << ")";
      EXPECT_TRUE(sees(from, to)) << from << " must not know " << to;
      EXPECT_TRUE(mayCall(from, to)) << from << " must not call " << to;
    }
}

TEST(House, IncludesRunInNoCircle) {
  EXPECT_THAT(circleIn(includeGraph(tree())), testing::IsEmpty());
}

TEST(House, FilesAndFunctionsFitIntoAHead) {
  for (const auto& [path, source] : tree()) {
    EXPECT_LE(source.lines, kLongestFile) << path;
    for (const Function& function : source.functions)
      EXPECT_LE(function.length, kLongestFunction) << path << ":" << function.line;
  }
}

// The checks themselves: what they must notice.

TEST(HouseChecks, AnArrowUpwardOrIntoAForeignRoomIsSeen) {
  EXPECT_TRUE(goesUp("src/calc/lux.cpp", "src/driverutil.h"));
  EXPECT_TRUE(goesUp("src/proto/store/images.h", "src/process/tprocess.h"));
  EXPECT_TRUE(goesUp("src/proto/tshl_ctl.h", "src/stub/stubutil.h"));
  EXPECT_FALSE(goesUp("src/proto/tshl_ctl.cpp", "src/stub/stubutil.h"));
  EXPECT_FALSE(goesUp("src/stub/stubutil.cpp", "src/calc/mapping.h"));
  EXPECT_FALSE(sees("tools/parlctl/access/reg.cpp", "src/mcuctrace.h"));
  EXPECT_FALSE(sees("tools/peer/frame.cpp", "src/maps/registermap.h"));
  EXPECT_FALSE(sees("platform/sim/board_dir.cpp", "src/mcucutil.h"));
  EXPECT_FALSE(sees("tests/system/wire_test.cpp", "src/stub/stubutil.h"));
  EXPECT_FALSE(mayCall("src/proto/store/imageload.cpp", "platform/include/platform/driver.h"));
  EXPECT_FALSE(mayCall("src/process/colour.h", "platform/include/platform/board.h"));
  EXPECT_TRUE(mayCall("src/driverutil_flash.cpp", "platform/include/platform/driver.h"));
  EXPECT_TRUE(sees("tests/src/calc/mapping_test.cpp", "src/calc/mapping.h"));
}

TEST(HouseChecks, ACircleIsNamed) {
  const Graph graph{{"a", {"b"}}, {"b", {"c", "d"}}, {"d", {"b"}}};
  EXPECT_THAT(circleIn(graph), testing::ElementsAre("b", "d"));
  EXPECT_THAT(circleIn({{"a", {"b", "c"}}, {"b", {"c"}}}), testing::IsEmpty());
}

TEST(HouseChecks, FunctionsAreMeasuredAndOnlyFunctions) {
  const Source source = parse(R"(#include "a.h"
#define BLOCK(x) { x
namespace n {
// void inAComment() {
struct Row { int a = f(1); };
constexpr int kTable[]{1, 2'000, '{', '"'};
int two(int a,
        int b) {
  if (a) { b = g({a, b}); }
  const char* text = "}";
  return [&] { return b; }();
}
template <class T> Row::Row() : b(3), a{2} {
}
TEST_F(A, B) { }
}
)");
  EXPECT_THAT(source.includes, testing::ElementsAre("a.h"));
  EXPECT_EQ(source.lines, 16U);
  std::vector<std::size_t> lengths;
  for (const Function& function : source.functions) lengths.push_back(function.length);
  EXPECT_THAT(lengths, testing::ElementsAre(6U, 2U, 1U));
  EXPECT_EQ(source.functions.front().line, 7U);
}

}  // namespace
}  // namespace house
