// The chat between the two sides, and the line under the view while a message is written.

#include "tests/network_kit.h"

#include <gtest/gtest.h>

namespace {

TEST(ChatTest, ChatGoesBothWaysAsPlainText) {
  NetworkGame game(false);
  const std::string aims = game.window.lblHint.Caption;
  EXPECT_TRUE(game.window.Text1.Enabled);
  EXPECT_TRUE(game.window.Text2.Enabled);
  game.machine.Focus = &game.window.Text1;
  game.machine.Type("theirs");
  game.Frames(1);
  EXPECT_EQ(game.window.Text1.Text, "") << "the other side's line doesn't change";
  game.machine.Focus = &game.window.RMCanvas1;
  game.machine.PressKey(KeyCodes::Shift);
  game.machine.PressKey(KeyCodes::Tilde);
  game.Frames(1);
  EXPECT_EQ(game.machine.Focus, &game.window.Text2);
  EXPECT_EQ(game.window.lblHint.Caption, "Type your message. Enter sends it and goes back to the game.");
  game.machine.ReleaseKey(KeyCodes::Shift);
  game.Frames(1);
  EXPECT_FALSE(game.window.ShiftDown) << "the mouse aims again";
  game.machine.PressKey(KeyCodes::Escape);
  game.machine.Type("Good luck!\r");
  game.Frames(1);
  EXPECT_EQ(game.play->Sent, std::vector<std::string>{"MESSAGE"});
  EXPECT_EQ(game.window.Text2.Text, "");
  EXPECT_EQ(game.machine.Focus, &game.window.RMCanvas1);
  EXPECT_EQ(game.window.lblHint.Caption, aims);

  std::string longLine;
  for (int i = 0; i < 250; ++i) longLine += "\xC3\xA9";
  std::string noUtf8;
  for (int i = 0; i < 200; ++i) noUtf8 += "\xEF\xBF\xBD";
  const std::pair<std::string, std::string> rows[] = {{"Your turn", "Your turn"},
                                                      {"two\nlines", "two lines"},
                                                      {"<b>bold</b>", "<b>bold</b>"},
                                                      {longLine, longLine.substr(0, 400)},
                                                      {"a\xE2\x80\xAE"
                                                       "b\xC2\x85"
                                                       "c\x1B",
                                                       "a b c "},
                                                      {"\xC0\x80\xED\xA0\x80", noUtf8.substr(0, 15)},
                                                      {std::string(60000, '\x80'), noUtf8},
                                                      {"", ""}};
  for (const auto &[sent, shown] : rows) {
    game.Receive({std::string("MESSAGE"), sent});
    game.Frames(1);
    EXPECT_EQ(game.window.Text1.Text, shown);
    EXPECT_EQ(game.SoundsSince(), "play wis1.daw");
  }
}

TEST(ChatTest, AChatLineTypedUnderACardIsSentAfterIt) {
  NetworkGame game(false);
  std::size_t flying = 0, underTheCard = 0;
  const auto say = [&] {
    game.machine.Focus = &game.window.Text2;
    game.machine.Type("hear, hear\r");
    game.machine.Pump();
    EXPECT_EQ(game.window.Text2.Text, "");
    EXPECT_EQ(game.machine.Focus, &game.window.RMCanvas1);
    return game.play->Sent.size();
  };
  game.machine.After(500, [&] { flying = say(); });
  game.machine.After(4000, [&] {
    EXPECT_TRUE(game.window.AnyPictures());
    underTheCard = say() + say();
  });
  game.Flick(120);
  EXPECT_EQ(flying, 2U);
  EXPECT_EQ(underTheCard, 6U) << "nothing between the result and its \"Continue\"";
  EXPECT_EQ(game.play->Sent,
            (std::vector<std::string>{"Flick", "MESSAGE", "RESULT", "Continue", "MESSAGE", "MESSAGE"}));
  say();
  EXPECT_EQ(game.play->Sent.size(), 7U);
}

TEST(ChatTest, NobodyIsToldToTypeWhenTheKeyboardIsElsewhere) {
  NetworkGame game(true);
  const std::string waits = game.window.lblHint.Caption;
  const auto write = [&] {
    game.machine.Focus = &game.window.RMCanvas1;
    game.machine.PressKey(KeyCodes::Tilde);
    game.Frames(1);
    EXPECT_NE(game.window.lblHint.Caption, waits);
  };
  write();
  game.machine.PressMouse(2);
  game.Frames(1);
  EXPECT_EQ(game.window.lblHint.Caption, waits);
  write();
  write();
  game.machine.Type("\r");
  game.Frames(1);
  EXPECT_EQ(game.window.lblHint.Caption, waits) << "as before \"~\" was pressed twice";
  write();
  game.Receive({std::string("RESULT"), std::int32_t{5}});
  game.ReceiveIn(1000, {std::string("Continue")});
  game.machine.After(500, [&] { game.machine.PressKey(KeyCodes::Tilde); });
  game.Frames(2);
  EXPECT_EQ(game.window.lblHint.Caption, waits) << "\"~\" was pressed under the card";
  write();
  game.window.RMCanvas1.GotFocus();
  EXPECT_EQ(game.window.lblHint.Caption, waits);
}

TEST(ChatTest, AClickGoesBackFromAMessageToTheGameWithoutAShot) {
  NetworkGame game(false);
  const std::string aims = game.window.lblHint.Caption;
  game.machine.PressKey(KeyCodes::Tilde);
  game.Frames(1);
  game.machine.PressMouse(1);
  game.Frames(3);
  EXPECT_EQ(game.window.lblHint.Caption, aims);
  EXPECT_EQ(game.window.Force, 0.0f);
  game.machine.ReleaseMouse(1);
  game.Frames(1);
  EXPECT_EQ(game.window.Shots, AttemptsInPossession);
  game.machine.PressMouse(1);
  game.Frames(3);
  EXPECT_GT(game.window.Force, 0.0f);
}

} // namespace
