// The wire format, byte by byte. It must not change without a new protocol version.

#include "platform/session/frame.h"
#include "platform/session/session_message.h"
#include "tests/session_kit.h"

#include <gtest/gtest.h>

#include <random>

using session::AnyFrame;
using session::Bytes;

namespace {

const session::Guid Game = *session::ParseGuid(ApplicationGuid);

std::string Hex(const Bytes &bytes) {
  constexpr const char *Digits = "0123456789abcdef";
  std::string text;
  for (const std::uint8_t byte : bytes) (text += Digits[byte >> 4]) += Digits[byte & 15];
  return text;
}

/// One frame of each type, with its bytes on a connection.
struct Golden {
  const char *name;
  AnyFrame frame;
  std::string bytes;
};

std::vector<Golden> AllFrames() {
  const std::string guid = "7ab2f242475f11d4af9b00c04f361528";
  const std::string intro = "534e57470100" + guid;
  const session::Token secret{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
  const std::string secretHex = "0102030405060708090a0b0c0d0e0f10";
  return {
      {"ask", session::AskFrame{Game, 0x1122334455667788},
       "0001000001" + intro + "8877665544332211" + std::string(450, '0')},
      {"answer", session::AnswerFrame{Game, 1, 2, 1, 2, 4, 5, "SNWG"},
       "3400000002" + intro + "01000000000000000200000000000000" +
           "0102"
           "04000000"
           "0500"
           "04534e5747"},
      {"join", session::JoinFrame{Game, 3}, "1f00000003" + intro + "0300000000000000"},
      {"resume", session::ResumeFrame{Game, 3, secret, 258},
       "3300000004" + intro + "0300000000000000" + secretHex + "02010000"},
      {"welcome", session::WelcomeFrame{secret}, "1100000005" + secretHex},
      {"resumed", session::ResumedFrame{7}, "050000000607000000"},
      {"refuse", session::RefuseFrame{session::RefuseReason::Full}, "020000000704"},
      {"data", session::DataFrame{9, session::DataKind::Game, {0xAA, 0xBB}}, "08000000080900000000aabb"},
      {"player", session::DataFrame{1, session::DataKind::Player, {}}, "06000000080100000001"},
      {"ack", session::AckFrame{10}, "05000000090a000000"},
      {"bye", session::ByeFrame{11}, "050000000a0b000000"},
  };
}

TEST(SessionFrameTest, EveryFrameRoundTripsThroughItsBytes) {
  for (const Golden &golden : AllFrames()) {
    SCOPED_TRACE(golden.name);
    const Bytes bytes = session::EncodeFrame(golden.frame);
    EXPECT_EQ(Hex(bytes), golden.bytes);
    session::FrameReader reader(session::LargestFrame);
    // One byte at a time.
    for (std::size_t i = 0; i < bytes.size(); ++i) {
      ASSERT_FALSE(reader.Next()) << "after " << i << " bytes";
      reader.Add({&bytes[i], 1});
    }
    const auto frame = reader.Next();
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->index(), golden.frame.index());
    EXPECT_EQ(Hex(session::EncodeFrame(*frame)), golden.bytes);
    EXPECT_EQ(reader.Held(), 0U);
  }
}

TEST(SessionFrameTest, AMessageHasItsBytes) {
  session::SessionMessage message;
  message.WriteString("Flick");
  message.WriteSingle(-1.5f);
  message.WriteLong(-2);
  message.WriteString("");
  EXPECT_EQ(Hex(message.Encode()), "010500466c69636b"
                                   "030000c0bf"
                                   "02feffffff"
                                   "010000");
}

TEST(SessionFrameTest, WhateverComesIsAFrameOrRefused) {
  std::mt19937 random(4);
  const auto golden = AllFrames();
  int refused = 0;
  int taken = 0;
  for (int i = 0; i < 200000; ++i) {
    Bytes bytes = session::EncodeDatagram(golden[random() % golden.size()].frame);
    for (std::uint32_t changes = random() % 4; changes > 0; --changes) {
      bytes[random() % bytes.size()] = static_cast<std::uint8_t>(random());
    }
    if (random() % 4 == 0) bytes.resize(random() % (bytes.size() + 4));
    try {
      const AnyFrame frame = session::DecodeDatagram(bytes);
      if (std::holds_alternative<session::OtherVersionFrame>(frame)) continue;
      // Re-encoding gives the same bytes, except for the padding of a question.
      const Bytes again = session::EncodeDatagram(frame);
      if (!std::holds_alternative<session::AskFrame>(frame)) {
        ASSERT_EQ(Hex(again), Hex(bytes));
      }
      ++taken;
    } catch (const session::MalformedError &) {
      ++refused;
    }
  }
  EXPECT_GT(refused, 10000);
  EXPECT_GT(taken, 10000);
}

TEST(SessionFrameTest, AMessageOfAnyBytesIsReadWholeOrRefused) {
  std::mt19937 random(5);
  int refused = 0;
  int taken = 0;
  for (int i = 0; i < 100000; ++i) {
    Bytes bytes;
    for (std::uint32_t fields = random() % 4; fields > 0; --fields) {
      const auto type = static_cast<std::uint8_t>(1 + random() % 3);
      bytes.push_back(type);
      if (type == 1) bytes.insert(bytes.end(), {static_cast<std::uint8_t>(random() % 5), 0});
      for (int k = 0; k < 4; ++k) bytes.push_back(static_cast<std::uint8_t>(random()));
    }
    try {
      EXPECT_EQ(Hex(session::SessionMessage::Decode(bytes).Encode()), Hex(bytes));
      ++taken;
    } catch (const session::MalformedError &) {
      ++refused;
    }
  }
  EXPECT_GT(refused, 10000);
  EXPECT_GT(taken, 10000);
}

TEST(SessionFrameTest, NamesAreCutBetweenCharacters) {
  EXPECT_EQ(session::CutText("Br\xC3\xA4mble", 3), "Br");
  EXPECT_EQ(session::CutText("Br\xC3\xA4mble", 4), "Br\xC3\xA4");
  EXPECT_EQ(session::CutText("Bramble", 7), "Bramble");
}

TEST(SessionFrameTest, AGuidRoundTripsThroughItsText) {
  EXPECT_EQ(session::GuidText(Game), ApplicationGuid);
  for (const char *none :
       {"", "7AB2F242-475F-11D4-AF9B-00C04F361528", "{7AB2F242-475F-11D4-AF9B-00C04F36152G}",
        "{7AB2F242+475F-11D4-AF9B-00C04F361528}"}) {
    EXPECT_FALSE(session::ParseGuid(none)) << none;
  }
}

} // namespace
