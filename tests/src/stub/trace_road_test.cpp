// What the trace says about a request from its arrival to its end, line by line.
#include "daemontest.h"
#include "mcuctrace.h"

namespace {

using peer::Bytes;
using peer::Frame;
using Lines = std::vector<std::string>;

// Bytes as the trace writes them.
std::string logged(const Bytes& bytes) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text;
  for (const uint8_t byte : bytes) text += {kDigits[byte >> 4], kDigits[byte & 0xF], ' '};
  return text;
}

// A reply as it was sent: head and frame.
Bytes whole(const peer::Message& reply) {
  Bytes bytes = peer::encode(reply.head);
  bytes.insert(bytes.end(), reply.frame.begin(), reply.frame.end());
  return bytes;
}

const Lines kTaken{
    ("Info Apipc, Get a new Packet: ihead_t uiid = 0x010a5000 label count = {number} size = 0"
     " large label = 28 small label = 0"),
    "Info ============================= Begin Deal DataBlock ==============================",
    "Info Apipc: the new Packet's datalength = {length} the Data = {request}",
    "Info revise = {computed}, iDataLen = {length}, usCheckout={carried}",
    "Info Finish Checkout the DataBlock.",
};
const Lines kDecoded{
    "Info Finish Decode the DataBlock.",
    "Info  >>>>>>>>>> onDataRecvFromIMDNew Lock <<<<<<<<<<<<",
    "Info Check sequence number, protoReply m_ucDestinationAddrerss = {destination}, sequse id = 0",
};
const Lines kReplied{
    "Info =============================== Begin reply Message =============================",
    "Info ReplyMsg: the ack = {ack}",
    "Info ================================= Begin apipc send ==============================",
    "Info ================================= Finish apipc send =============================",
    "Info ReplyMsg: reply message successfully. ret = 0 datalength = {sent}",
};
const Lines kFinished{
    "Info =============================== Finish reply Message ============================",
    "Info  >>>>>>>>>> onDataRecvFromIMDNew UnLock <<<<<<<<<<<<",
};
const Lines kEnd{"Info ============================= Finish Deal DataBlock ============================="};

const std::string kBeginTask =
    "Info ============================= Begin SendCard Task ===============================";
const std::string kFinishTask =
    "Info ============================= Finish SendCard Task ==============================";
const std::string kBeginRead =
    "Info ============================ Begin Read BackupInfo ==============================";
const std::string kFinishRead =
    "Info ============================ Finish Read BackupInfo =============================";
const std::string kBadChecksum = "Error === dealDataBlock ===Deal DataBlock: Checkout Result is false! ";

struct Road {
  const char* name;
  Frame request;
  uint16_t checksumError = 0;  // added to the request's checksum
  const char* ack = "0";
  const char* destination = "0";
  Lines refused{};                    // between checking and decoding
  Lines task{};                       // between decoding and reply
  std::vector<std::size_t> pieces{};  // characters in the reply's lines; none: all in one
  Lines trailer{};                    // between reply and end
  Lines work{};                       // of the work thread, which goes on beside the reply
};
void PrintTo(const Road& road, std::ostream* out) {
  *out << road.name;
}

Frame readOf(uint16_t length) {
  return {.address = 0x02300010, .length = length};
}
Lines readTask(const char* length) {
  return {kBeginTask,  std::string("Info Recv Register Address : 0x02300010 length : ") + length,
          kBeginRead,  std::string("Info ReadBytesFromFlash: start address = 0x00b98010 length = ") + length,
          kFinishRead, kFinishTask};
}

const Lines kWriteTrailer{"Info \tmsg.m_ucCode = begin", "Info \tmsg.m_ucCode = finish"};

const Road kRoads[] = {
    {.name = "ARead", .request = readOf(4), .task = readTask("4")},
    {.name = "ALongestReplyInOneLine", .request = readOf(18), .task = readTask("18")},
    {.name = "AReplyInTwoPieces", .request = readOf(19), .task = readTask("19"), .pieces = {200, 1}},
    {.name = "AReplyInThreePieces", .request = readOf(86), .task = readTask("86"), .pieces = {200, 200, 2}},
    {.name = "AQueuedWrite",
     .request = {.code = peer::kWrite, .address = 0x02300010, .length = 3, .data = {1, 0xAB, 0xFF}},
     .task = {kBeginTask, "Info Recv Register Address : 0x02300010 length : 3",
              ("Info ============================ Begin add DoBackupInfoKey message to "
               "list==========================="),
              "Info  Register: 0x02300010 len: 3",
              "Debug  <<<<<<<<<<<< Add apipc data list Begin >>>>>>>>>>>>",
              "Debug  <<<<<<<<<<<< Add apipc data list Lock   >>>>>>>>>>>>",
              "Debug  <<<<<<<<<<<< Add apipc data list UnLock   >>>>>>>>>>>>",
              ("Info ============================ Finish add DoBackupInfoKey message to "
               "list==========================="),
              kFinishTask},
     .trailer = kWriteTrailer,
     .work = {"Info ============================ Begin Sprocess_DoBackupInfo ===========================",
              "Info Sprocess_DoBackupInfo enter:",
              "Info Process key: DoBackupInfoKey  Register: 0x02300010 len: 3 data:01 AB FF ",
              "Info WriteDataToFlash: start address = 0x00b98010 length = 3",
              "Info ============================ Finish Sprocess_DoBackupInfo ==========================="}},
    {.name = "AChecksumFailure",
     .request = {.code = peer::kWrite, .address = 0x02300010, .length = 1, .data = {7}},
     .checksumError = 1,
     .ack = "2",
     .refused = {kBadChecksum},
     .trailer = kWriteTrailer},
    {.name = "AChecksumFailureForAnotherDestination",
     .request = {.destination = 0x1F, .address = 0x02300010, .length = 4},
     .checksumError = 0xFFFF,
     .ack = "2",
     .destination = "1f",
     .refused = {kBadChecksum},
     .task = {"Error === checkSelfDeviceRequest ===Not this TALVOR's Msg, addr = 1f sequse id = 0"}},
    {.name = "ARefusedLength",
     .request = readOf(513),
     .ack = "4",
     .task = {kBeginTask, "Info Recv Register Address : 0x02300010 length : 513",
              "Error === Ssh_checkFun ===Check Func: Unsupportd register max/min length.", kFinishTask}},
    {.name = "AnUnknownAddressOfATool",
     .request = {.source = 0xFE, .address = 0x02250000, .length = 4},
     .task =
         {kBeginTask, "Info Recv Register Address : 0x02250000 length : 4",
          "Error === Ssh_StartSendCard ===Ssh_StartSendCard: Invalid register address!",
          "Error === onDataRecvFromIMDNew ===not carried out although acknowledged: device type 0, code 0, "
          "register = 0x02250000, length = 4, result = 4"},
     .trailer = {"Info \t********DevComLinkState == 1 *********"}},
};

constexpr uint32_t kTraveller = 0x0A5000;

class TracedTest : public DaemonTest {
 protected:
  TracedTest() : DaemonTest("fpga_autoload = no\n") {
    daemon.connect(kTraveller);
    daemon.exchange(peer::encode(Frame{.address = 0xF0000000, .length = 1}), {}, kTraveller);
    ORVE_MCUC::setTraceLevel(3);
  }

  peer::Message travel(const Bytes& frame) {
    return daemon.exchange(frame, {}, kTraveller).value_or(peer::Message{});
  }
};

class RoadTest : public TracedTest, public testing::WithParamInterface<Road> {
 protected:
  // The lines one after the other, with the values in the places of their names.
  static Lines joined(const std::vector<Lines>& parts,
                      const std::vector<std::pair<std::string, std::string>>& values) {
    Lines all;
    for (const Lines& part : parts) all.insert(all.end(), part.begin(), part.end());
    for (std::string& line : all)
      for (const auto& [name, value] : values)
        if (const std::size_t at = line.find(name); at != std::string::npos)
          line.replace(at, name.size(), value);
    return all;
  }

  static Lines expected(const Road& road, const Bytes& frame, uint16_t carried, const peer::Message& reply) {
    const Bytes sent = whole(reply);
    const std::string text = logged(sent);
    Lines shown;
    if (road.pieces.empty()) shown.push_back("Info ReplyMsg: length <200. the data = " + text);
    std::size_t at = 0;
    for (const std::size_t piece : road.pieces) {
      shown.push_back("Info  ReplyMsg: the data = " + text.substr(at, piece));
      at += piece;
    }
    EXPECT_EQ(at, road.pieces.empty() ? 0 : text.size());
    return joined({kTaken, road.refused, kDecoded, road.task, kReplied, shown, kFinished, road.trailer, kEnd},
                  {{"{number}", std::to_string(reply.head.labelCount)},
                   {"{length}", std::to_string(frame.size())},
                   {"{request}", logged(frame)},
                   {"{computed}", std::to_string(static_cast<uint16_t>(carried - road.checksumError))},
                   {"{carried}", std::to_string(carried)},
                   {"{destination}", road.destination},
                   {"{ack}", road.ack},
                   {"{sent}", std::to_string(sent.size())}});
  }
};

TEST_P(RoadTest, EveryLineComesInItsPlace) {
  const Road& road = GetParam();
  daemon.board.setFlash(0xB98010, counting(128));
  Bytes frame = peer::encode(road.request);
  const auto carried = static_cast<uint16_t>((frame.end()[-2] | frame.end()[-1] << 8) + road.checksumError);
  frame.end()[-2] = static_cast<uint8_t>(carried);
  frame.end()[-1] = static_cast<uint8_t>(carried >> 8);
  const peer::Message reply = travel(frame);
  EXPECT_THAT(daemon.trace(), testing::ElementsAreArray(expected(road, frame, carried, reply)));
  daemon.workOff();
  EXPECT_THAT(daemon.trace(), testing::ElementsAreArray(road.work));
}

INSTANTIATE_TEST_SUITE_P(Requests, RoadTest, testing::ValuesIn(kRoads),
                         [](const auto& row) { return row.param.name; });

TEST_F(TracedTest, APeerIsNewOnceAndAFrameThatCannotBeDecodedEndsItsRoad) {
  EXPECT_FALSE(daemon.exchange(peer::fromHex("55 AA 00"), {}, kTraveller));
  EXPECT_THAT(daemon.trace(),
              testing::ElementsAre(
                  testing::StartsWith("Info Apipc, Get a new Packet: ihead_t uiid = 0x010a5000 "), kTaken[1],
                  "Info Apipc: the new Packet's datalength = 3 the Data = 55 AA 00 ", kBadChecksum,
                  testing::StartsWith("Error === DecodeHeader ===Decode Header: Decode Failed! return. "
                                      "The data length = 3pData = 0x"),
                  "Error === dealDataBlock ===Decode DataBlock Failed! Decode result = -1", kEnd[0]));
  for (const std::size_t news : {1U, 0U}) {
    daemon.connect(kTraveller + 1);
    daemon.exchange(peer::encode(Frame{.address = 0xF0000000, .length = 1}), {}, kTraveller + 1);
    EXPECT_EQ(daemon.trace("recv new uiid = 17453057 size = ").size(), news);
  }
}

TEST_F(TracedTest, ALongFrameIsLeftOutWhereItsTextWouldNotFitABuffer) {
  for (const std::size_t size : {400U, 21845U, 21846U}) {
    EXPECT_THAT(daemon.write(0x05000000, counting(size - peer::kFrameOverhead)), CarriesNothing());
    const std::string text = "Apipc: the new Packet's datalength = " + std::to_string(size) + " the Data = ";
    const std::string begin = "Info " + text;
    const Lines line = daemon.trace(text);
    ASSERT_EQ(line.size(), 1U);
    if (size == 21846) {
      EXPECT_EQ(line[0], begin);
    } else {
      EXPECT_TRUE(line[0].starts_with(begin + "55 AA 00 ")) << line[0];
    }
  }
}

TEST_F(TracedTest, ThePiecesOfTheLongestReplyAddUpToIt) {
  daemon.board.setFlash(0xC30000, counting(32768));
  const peer::Message reply = travel(peer::encode(Frame{.address = 0x05000000, .length = 32768}));
  ASSERT_EQ(reply.frame.size(), 32768U + peer::kFrameOverhead);
  const std::string prefix = "Info  ReplyMsg: the data = ";
  std::string pieces;
  for (const std::string& line : daemon.trace(" ReplyMsg: the data = ")) {
    EXPECT_LE(line.size(), prefix.size() + 200);
    pieces += line.substr(prefix.size());
  }
  EXPECT_EQ(pieces, logged(whole(reply)));
}

}  // namespace
