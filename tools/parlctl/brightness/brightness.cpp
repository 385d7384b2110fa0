// brightness show, set, sensors, lux: what the wall has, and why.
#include <algorithm>
#include <cstdio>
#include <memory>

#include "brightness_daemon.h"
#include "commands.h"
#include "helptext.h"
#include "maps/registermap.h"
#include "output.h"

namespace parlctl {

namespace {

using peer::Bytes;
using peer::Error;
using peer::Failure;
namespace map = ORVE_MCUC;
namespace record = ORVE_MCUC::brightness;

constexpr int64_t kDay = 86400;
constexpr unsigned kPacketPorts = 8;  // the space's masks have eight bits

std::string momentText(int64_t localSeconds) {
  const map::LocalMoment moment = map::momentOf(localSeconds);
  char text[48];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", moment.year + 2000, moment.month,
                moment.day, moment.hour, moment.minute, moment.second);
  return text;
}

std::string percentText(unsigned brightness) {
  char text[32];
  std::snprintf(text, sizeof text, "%.0f %% (%u)", brightness * 100.0 / 255, brightness);
  return text;
}

// Where the daemon's control stands, found by running it over the last day with the light of now.
struct Standing {
  map::BrightnessSchedule state;
  std::optional<map::SentBrightness> last;
};

Standing standingOf(const Bytes& file, int64_t now, std::optional<uint16_t> lux) {
  map::BrightnessFile whole{};
  std::copy_n(file.begin(), std::min(file.size(), whole.size()), whole.begin());
  map::VirtualWall wall(whole, now - kDay);
  takeControlSwitch(wall);
  if (lux) wall.light = [lux](int64_t, const map::SensorRecord&) { return lux; };
  wall.runUntil(now);
  return {wall.control().state(), wall.sent.empty() ? std::nullopt : std::optional(wall.sent.back())};
}

// The next node's time of day, today or tomorrow.
int64_t nextAt(const map::BrightnessSchedule& state, int64_t now) {
  const int64_t due = (map::fromBcd(state.TimeIntHour) * 60 + map::fromBcd(state.TimeIntMin)) * 60;
  const int64_t today = now - now % kDay + due;
  return today > now ? today : today + kDay;
}

Json cardsJson(peer::Peer& daemon) {
  Json cards = Json::object();
  for (unsigned port = 0; port < record::kNodePortCount; ++port)
    if (const auto value = cardBrightness(daemon, port)) cards[std::to_string(port)] = *value;
  return cards;
}

std::string cardsText(const Json& cards) {
  std::string text;
  for (const auto& [port, value] : cards.items())
    text += (text.empty() ? "port " : ", port ") + port + ": " + percentText(value.get<unsigned>());
  return text.empty() ? "none answers" : text;
}

void describeNodes(const map::BrightnessSchedule& state, int64_t now, Json& fields, std::string& text) {
  const bool waits = state.INT_Once != 2 && state.runsNodes();
  const int nodes = std::max(1, static_cast<int>(state.ProgrammableAdjustPartNum));
  const int current = waits ? (state.RtcIndex + nodes - 1) % nodes : -1;
  fields["current_node"] = waits ? Json(current + 1) : Json();
  fields["next_node"] = waits ? Json(state.RtcIndex + 1) : Json();
  fields["next_at"] = waits ? Json(momentText(nextAt(state, now))) : Json();
  if (!waits) return;
  text += "\ncurrent  node " + std::to_string(current + 1) + " of " + std::to_string(nodes) +
          (state.MixAutoBriAdjustEnable == map::kActive ? ", follows the light" : "");
  text += "\nnext     node " + std::to_string(state.RtcIndex + 1) + ", " + momentText(nextAt(state, now));
}

void describeLast(const std::optional<map::SentBrightness>& last, Json& fields, std::string& text) {
  fields["last_sent"] = last ? Json(last->value) : Json();
  fields["last_reason"] = last ? Json(reasonName(last->reason)) : Json();
  fields["last_at"] = last ? Json(momentText(last->at)) : Json();
  if (!last) return;
  text += "\nsent     " +
          (last->black ? std::string(last->value == 0 ? "not black" : "black") : percentText(last->value)) +
          ", by " + reasonName(last->reason) + ", " + momentText(last->at);
}

void show(const Options& options) {
  peer::Peer daemon = options.connect();
  const Bytes file = storedFile(daemon);
  const BrightnessPlan plan = decompile(file);
  const int64_t now = boardTime(options);
  const auto lux = plan.sensors.empty() ? std::nullopt : averageOf(askSensors(daemon, plan));
  const Standing standing = standingOf(file, now, lux);
  const Json cards = cardsJson(daemon);
  Json fields{{"mode", modeName(plan.mode)}, {"at", momentText(now)}};
  std::string text = std::string("mode     ") + modeName(plan.mode) + "\ntime     " + momentText(now);
  if (record::isMixedFile(plan.mode)) {
    fields.update({{"automatic", plan.global}, {"on", plan.control}, {"gradual", plan.gradual}});
    text += std::string("\nswitches automatic ") + (plan.global ? "yes" : "no") + ", on " +
            (plan.control ? "yes" : "no") + ", gradual " + (plan.gradual ? "yes" : "no");
  }
  describeNodes(standing.state, now, fields, text);
  describeLast(standing.last, fields, text);
  fields["lux"] = lux ? Json(*lux) : Json();
  if (!plan.sensors.empty())
    text += "\nlight    " + (lux ? std::to_string(*lux) + " lux" : "no sensor answers");
  fields["cards"] = cards;
  const bool whole = standing.last && !standing.last->black && standing.last->port == map::kEveryPort;
  const bool differs = whole && std::any_of(cards.begin(), cards.end(),
                                            [&](const Json& value) { return value != standing.last->value; });
  text += '\n' + wrapped("cards    " + cardsText(cards), 9);
  if (differs)
    text += "\nthe cards do not have what the plan sends: set by hand, or the plan was started later";
  fields["as_planned"] = whole ? Json(!differs) : Json();
  options.print({fields, text});
}

struct SetArguments {
  std::string percentText;
  std::string ports = "0-7";
};

void set(const Options& options, const SetArguments& arguments) {
  const auto brightness = map::brightnessOf(static_cast<uint8_t>(number(arguments.percentText, 100)));
  unsigned mask = 0;
  for (const unsigned port : portList(arguments.ports)) {
    if (port >= kPacketPorts) throw Error(Failure::Usage, "ports are 0 to 7 here");
    mask |= 1U << port;
  }
  peer::Peer daemon = options.connect();
  daemon.write(map::reg::kIntelligentBrightness, {brightness, 1, 0, 0, 0, static_cast<uint8_t>(mask), 0});
  unsigned answered = 0;
  bool same = true;
  for (unsigned port = 0; port < kPacketPorts; ++port) {
    const auto value = (mask >> port & 1) != 0 ? cardBrightness(daemon, port) : std::nullopt;
    if (!value) continue;
    ++answered;
    same = same && *value == brightness;
  }
  const Outcome outcome = answered == 0 ? Outcome::Accepted : same ? Outcome::Verified : Outcome::Mismatch;
  const std::string seen = answered == 0 ? "accepted; no card answers"
                           : same ? "verified: the first cards of " + countText(answered, "port") + " have it"
                                  : "mismatch: a card has another brightness";
  options.print({{{"brightness", brightness}, {"ports_mask", mask}, {"ports_seen", answered}},
                 "brightness " + percentText(brightness) + '\n' + seen,
                 outcome});
}

void sensors(const Options& options) {
  peer::Peer daemon = options.connect();
  const auto readings = askSensors(daemon, decompile(storedFile(daemon)));
  Json list = Json::array();
  std::string text = readings.empty() ? "the daemon's plan has no sensor" : "";
  bool silent = false;
  for (const SensorReading& reading : readings) {
    const auto& sensor = reading.sensor;
    list.push_back({{"port", sensor.PortAddr},
                    {"card", sensor.BoardAddr},
                    {"sensor", sensor.SensorAddr},
                    {"lux", reading.lux ? Json(*reading.lux) : Json()}});
    text += (text.empty() ? "port " : "\nport ") + std::to_string(sensor.PortAddr) + " card " +
            std::to_string(sensor.BoardAddr) + " sensor " + std::to_string(sensor.SensorAddr) + "  " +
            (reading.lux ? std::to_string(*reading.lux) + " lux" : "does not answer");
    silent = silent || !reading.lux;
  }
  const auto average = averageOf(readings);
  if (average) text += "\naverage  " + std::to_string(*average) + " lux";
  options.print({{{"sensors", list}, {"average", average ? Json(*average) : Json()}},
                 text,
                 silent ? Outcome::Found : Outcome::Done});
}

struct CurveArguments {
  std::string plan;
  std::string svg;
};

void curve(const Options& options, const CurveArguments& arguments) {
  OutputFile svg(arguments.svg);
  BrightnessPlan plan;
  if (arguments.plan.empty()) {
    peer::Peer daemon = options.connect();
    plan = decompile(storedFile(daemon));
  } else {
    plan = planFromFile(arguments.plan).plan;
  }
  if (svg.wanted()) svg.write(luxCurveSvg(plan));
  Json points = Json::array();
  for (const auto& point : plan.map) points.push_back({{"lux", point.lux}, {"percent", point.percent}});
  options.print({{{"mode", modeName(plan.mode)}, {"map", points}}, luxCurveText(plan)});
}

}  // namespace

void addBrightness(Verb& root, const Options& options) {
  Verb& brightness =
      root.verb("brightness", "Brightness by timetable and light, and why the wall has the one it has");
  Verb& shown = brightness.verb("show", "Mode, current and next node, last brightness and its reason");
  shown.note(
      "The reason is found by running the daemon's scheduler on its own plan over the last day, with the "
      "light "
      "that the sensors have now; the cards are asked for what they have.");
  shown.run([&options] { show(options); });

  auto setArguments = std::make_shared<SetArguments>();
  Verb& verb = brightness.verb("set", "Set the brightness of ports at once");
  verb.operand("PERCENT", setArguments->percentText, "Brightness from 0 to 100");
  verb.option("--ports", "PORTS", setArguments->ports, "Numbers and ranges from 0 to 7, separated by commas");
  verb.note("A plan that runs sets its own again: at its next node, or within ten minutes.");
  verb.example("brightness set 60 --ports 0-3");
  verb.run([&options, setArguments] { set(options, *setArguments); });

  addPlanVerbs(brightness, options);
  auto curveArguments = std::make_shared<CurveArguments>();
  Verb& lux = brightness.verb("lux", "From light to brightness");
  Verb& curveVerb = lux.verb("curve", "The plan's table of light as a curve");
  curveVerb.option("--plan", "FILE", curveArguments->plan, "Of this plan; of the daemon's without it")
      .isFile();
  curveVerb.option("--svg", "FILE", curveArguments->svg, "Draw it into this file, too").isFile();
  curveVerb.run([&options, curveArguments] { curve(options, *curveArguments); });

  Verb& sensorVerb = brightness.verb("sensors", "Read each light sensor of the daemon's plan now");
  sensorVerb.run([&options] { sensors(options); });
}

}  // namespace parlctl
