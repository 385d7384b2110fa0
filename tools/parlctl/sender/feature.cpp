// feature list, get, set: the sending card's features by name.
#include <algorithm>
#include <memory>

#include "cardfeatures.h"
#include "commands.h"
#include "helptext.h"
#include "maps/registermap.h"
#include "values.h"

namespace parlctl {

namespace {

using peer::Bytes;
using peer::Error;
using peer::Failure;

struct FeatureArguments {
  std::vector<std::string> items;
  bool refresh = false;
};

Json rowOf(const Feature& feature, std::span<const uint8_t> bytes) {
  return {{"name", feature.name},
          {"address", hexAddress(feature.address())},
          {"length", feature.length},
          {"value", valueJson(feature, bytes)},
          {"hardware", feature.hardware}};
}

std::string padded(std::string text, std::size_t width) {
  text.resize(std::max(width, text.size() + 1), ' ');
  return text;
}

std::string lineOf(const Feature& feature, std::span<const uint8_t> bytes) {
  return hexAddress(feature.address()) + "  " + padded(feature.name, 33) + valueText(feature, bytes);
}

void list(const Options& options, const FeatureArguments& arguments) {
  peer::Peer daemon = options.connect();
  const Bytes image = readImage(daemon, arguments.refresh);
  Json rows = Json::array();
  std::string text;
  for (const Feature& feature : features()) {
    const Bytes bytes = feature.onBus ? readFeature(daemon, feature)
                                      : Bytes(image.begin() + feature.offset,
                                              image.begin() + feature.offset + feature.length);
    rows.push_back(rowOf(feature, bytes));
    rows.back()["writing"] = std::string(feature.effect);
    text += (text.empty() ? "" : "\n") + lineOf(feature, bytes);
  }
  options.print({{{"features", rows}}, text});
}

void get(const Options& options, const FeatureArguments& arguments) {
  std::vector<Feature> wanted;
  std::ranges::transform(arguments.items, std::back_inserter(wanted), &featureOf);
  peer::Peer daemon = options.connect();
  if (arguments.refresh) readImage(daemon, true);
  for (const Feature& feature : wanted) {
    const Bytes bytes = readFeature(daemon, feature);
    options.print({rowOf(feature, bytes), lineOf(feature, bytes)});
  }
}

struct Setting {
  Feature feature;
  Bytes bytes;
};

Setting settingOf(const std::string& item) {
  const std::size_t equals = item.find('=');
  if (equals == std::string::npos)
    throw Error(Failure::Usage, "'" + item + "' is not NAME=VALUE or ADDRESS=VALUE");
  const std::string place = item.substr(0, equals);
  const std::string value = item.substr(equals + 1);
  Setting setting{featureOf(place), {}};
  const bool isBareAddress = setting.feature.name.starts_with("0x") && place.find(':') == std::string::npos;
  if (isBareAddress)  // it is as long as its bytes are
    setting.feature = featureOf(place + ":" + std::to_string(peer::fromHex(value).size()));
  if (setting.feature.hardware)
    throw Error(Failure::Usage, setting.feature.name + " is what the hardware shows; nothing was sent");
  setting.bytes = valueBytes(setting.feature, value);
  return setting;
}

void set(const Options& options, const FeatureArguments& arguments) {
  std::vector<Setting> settings;
  std::ranges::transform(arguments.items, std::back_inserter(settings), &settingOf);
  peer::Peer daemon = options.connect();
  for (const Setting& setting : settings)
    options.print(setFeature(options, daemon, setting.feature, setting.bytes));
}

}  // namespace

void addFeature(Verb& root, const Options& options) {
  Verb& noun = root.verb("feature", "Features of the sending card, by name");
  const auto listed = std::make_shared<FeatureArguments>();
  const auto wanted = std::make_shared<FeatureArguments>();
  const auto given = std::make_shared<FeatureArguments>();
  constexpr const char* kRefresh = "Have the card ask its FPGA first";
  noun.verb("list", "All that have a name, and what the monitor sees of links and redundancy")
      .flag("--refresh", listed->refresh, kRefresh)
      .run([&options, listed] { list(options, *listed); });
  noun.verb("get", "Read features")
      .operands("NAME", wanted->items, "A name of the list, or ADDRESS[:LENGTH]")
      .flag("--refresh", wanted->refresh, kRefresh)
      .example("feature get output-width output-height")
      .run([&options, wanted] { get(options, *wanted); });
  noun.verb("set", "Write features, one after the other, and read them back")
      .operands("NAME=VALUE", given->items,
                "A name of the list or an address, and a number, a word as it is shown, or bytes")
      .note("All values are understood before the first is sent; what only the hardware sets is not sent")
      .example("feature set power-on-time=48 0x02000030=0102")
      .run([&options, given] { set(options, *given); });
}

}  // namespace parlctl
