#pragma once

/// Gives back to the system what loading and the first pictures have left in memory and play doesn't need.
void GiveBackSpareMemory();
