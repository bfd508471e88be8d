#include "tools/wires/scene.h"

#include <cstdio>
#include <future>
#include <iostream>
#include <limits>

void Tell(const std::string &what) { std::cout << "-- " << what << std::endl; }

void Expect(bool fits, const std::string &what) {
  if (!fits) throw GaveUp("not true: " + what);
  Tell(what);
}

std::string RunScript(const std::string &script, const std::string &act) {
  const std::string command = "tools/wires/" + script + " " + act;
  FILE *const output = popen(command.c_str(), "r");
  std::string said;
  for (int letter = 0; output && (letter = std::fgetc(output)) != EOF;) said += static_cast<char>(letter);
  if (!output || pclose(output) != 0) throw GaveUp("failed: " + command);
  return said;
}

bool Scene::Play(const std::string &name) {
  const Scenes scenes = All();
  const auto scene = scenes.find(name);
  if (scene == scenes.end()) return false;
  try {
    scene->second();
  } catch (const GaveUp &) {
    host_.Picture("gave-up");
    joiner_.Picture("gave-up");
    throw;
  }
  return true;
}

void Scene::SitDown() {
  auto other = std::async(std::launch::async, [&] { joiner_.SitDown(); });
  host_.SitDown();
  other.get();
  Pause(Milliseconds(1000));
}

void Scene::Shoot(Computer &shooter, Computer &other, const std::vector<int> &plan) {
  std::vector<int> &cards = shooter.AtTable().CardsSeen;
  std::vector<int> &otherCards = other.AtTable().CardsSeen;
  cards.clear();
  otherCards.clear();
  std::atomic<std::size_t> wanted = std::numeric_limits<std::size_t>::max();
  auto watching = std::async(std::launch::async, [&] { other.Watch(wanted); });
  try {
    shooter.AtTable().Possess(plan);
  } catch (...) {
    wanted = 0;
    throw;
  }
  wanted = cards.size();
  watching.get();
  // A replay that is late by more than a card's time gets the card's end together with its beginning.
  const bool flashed = otherCards.size() < cards.size() && other.SeesEndCard();
  Expect(flashed || cards == otherCards,
         flashed ? "a late replay: the last card has only flashed" : "both have seen the same cards");
}

std::string Scene::WaitForEndCard(Computer &side) {
  for (const auto end = Clock::now() + GivingUpTakes; Clock::now() < end; Pause(Milliseconds(100))) {
    if (const auto card = side.SeesEndCard()) return card->Title;
  }
  throw GaveUp("the match has no end card");
}

void Scene::ExpectGone(Computer &stayed, Seconds patience, const std::string &how) {
  stayed.AnswerBox("Game Over:", patience);
  stayed.WaitForEnd();
  Tell(how + ": the other side is told, and its program has ended");
}
