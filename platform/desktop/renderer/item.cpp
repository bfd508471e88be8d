#include "platform/desktop/renderer/item.h"

#include <algorithm>

void MarkGround(std::span<Item> items) {
  for (Item &item : items) {
    const auto carries = [&](const Item &each) {
      return IsWide(each.Mesh->Box()) && each.Where.Frame == item.Where.Frame;
    };
    item.Ground = IsWide(item.Mesh->Box()) ||
                  (item.Box.Extent() <= LargestThing && std::ranges::any_of(items, carries));
  }
}
