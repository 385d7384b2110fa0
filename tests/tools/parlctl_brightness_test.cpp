// parlctl brightness against a running daemon.
#include "parlctl_fixture.h"

using nlohmann::json;
using testing::HasSubstr;

namespace {

constexpr const char* kPlan = R"({
  "mode": "mixed", "gradual": false, "read_every_s": 1, "readings": 1,
  "sensors": [{"port": 0, "card": 3, "sensor": 1}, {"port": 1, "card": 0, "sensor": 0}],
  "slots": [{"from": "00:00", "ambient": true}],
  "lux_map": [{"lux": 0, "percent": 0}, {"lux": 1000, "percent": 100}],
  "fallback_percent": 40
})";

class ParlctlBrightnessTest : public ParlctlFixture {
 protected:
  void SetUp() override {
    daemon.prepare("board.conf", "sensor = 0 3 1 400\nsensor = 1 0 0 600\n");
    file("plan.json", kPlan);
    daemon.start();
  }
  json shown() const { return json::parse(run("--json brightness show").output); }
};

TEST_F(ParlctlBrightnessTest, APlanIsWrittenVerifiedReadAndExplained) {
  const Outcome written = run("brightness plan write " + path("plan.json") + " --wait");
  EXPECT_EQ(written.status, 0) << written.output;
  EXPECT_THAT(written.output, HasSubstr("verified: "));
  const json sensors = json::parse(run("--json brightness sensors").output);
  EXPECT_EQ(sensors["average"], 500);
  EXPECT_EQ(sensors["sensors"][1]["lux"], 600);
  EXPECT_TRUE(eventually([&] { return shown()["cards"]["0"] == 127; })) << run("brightness show").output;
  const json show = shown();
  EXPECT_EQ(show["schema"], "parlctl.brightness.show");
  EXPECT_EQ(show["mode"], "mixed");
  EXPECT_EQ(show["last_reason"], "sensor");
  EXPECT_EQ(show["last_sent"], 127);
  EXPECT_EQ(show["as_planned"], true);
  EXPECT_EQ(run("brightness plan read --to " + path("read.json")).status, 0);
  EXPECT_EQ(run("brightness plan check " + path("read.json")).status, 0);
  const json plan = json::parse(run("--json brightness plan read").output)["plan"];
  EXPECT_EQ(plan["lux_map"][1]["lux"], 1000);
  EXPECT_EQ(run("brightness lux curve --svg " + path("lux.svg")).status, 0);
  EXPECT_THAT(contents(path("lux.svg")), HasSubstr("</svg>"));
}

TEST_F(ParlctlBrightnessTest, APlanOfManyPiecesIsReadAsAWhole) {
  json plan = json::parse(kPlan);
  for (int minute = 5; minute < 24 * 60; minute += 10) {
    const std::string hours = std::to_string(100 + minute / 60), minutes = std::to_string(100 + minute % 60);
    plan["slots"].push_back({{"from", hours.substr(1) + ":" + minutes.substr(1)}, {"percent", minute % 100}});
  }
  file("long.json", plan.dump());
  EXPECT_EQ(run("brightness plan write " + path("long.json") + " --wait").status, 0);
  const json read = json::parse(run("--json brightness plan read").output)["plan"];
  EXPECT_EQ(read["slots"].size(), 145U);
  EXPECT_EQ(read["slots"][144]["percent"], 1435 % 100);
  EXPECT_EQ(read["lux_map"][1]["lux"], 1000);
}

TEST_F(ParlctlBrightnessTest, PortsAreSetAndReadBack) {
  const Outcome set = run("brightness set 60 --ports 0-2");
  EXPECT_EQ(set.status, 0) << set.output;
  EXPECT_THAT(set.output, HasSubstr("the first cards of 3 ports have it"));
  EXPECT_EQ(shown()["cards"]["2"], 153);
  EXPECT_EQ(shown()["cards"]["3"], 255);
  EXPECT_EQ(run("brightness set 101").status, 2);
  EXPECT_EQ(run("brightness set 50 --ports 8").status, 2);
  EXPECT_THAT(run("brightness plan read").output, HasSubstr("off"));
}

TEST_F(ParlctlBrightnessTest, PlansThatBreakRulesAreNotSent) {
  file("bad.json", R"({"mode": "mixed", "slots": [{"from": "09:00", "percent": 101}]})");
  file("no.json", R"({"mode": "mixed", "slot": []})");
  const Outcome check = run("brightness plan check " + path("bad.json"));
  EXPECT_EQ(check.status, 1) << check.output;
  EXPECT_THAT(check.output, HasSubstr("slot 1: 101 % counts as 100 % [percent]"));
  EXPECT_EQ(run("brightness plan write " + path("bad.json")).status, 2);
  EXPECT_EQ(shown()["mode"], "off");
  EXPECT_EQ(run("brightness plan write --force " + path("bad.json")).status, 0);
  EXPECT_TRUE(eventually([&] { return shown()["mode"] == "mixed"; }));
  for (const char* file : {"no.json", "nowhere.json"})
    EXPECT_EQ(run("brightness plan check " + path(file)).status, 2);
  const std::string preview = "brightness plan preview " + path("plan.json");
  EXPECT_EQ(run(preview + " --date 2024-02-30").status, 2);
  EXPECT_EQ(run(preview + " --date 2024-02-29 --lux 500 --svg " + path("day.svg")).status, 0);
  EXPECT_THAT(run(preview + " --date 2024-02-29 --lux 500").output, HasSubstr(" 50 % (127)  sensor"));
}

}  // namespace
