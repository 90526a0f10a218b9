#pragma once

// How debug output is laid out: columns of digits + 10, as many as fit into a line of 80.
struct TnLaDebugLayout {
  int width;
  int per_line;  // meaningless where the width is 0
};

// The argument that the matrix printer reserves.
inline constexpr int kPrinterReserved = 1;

TnLaDebugLayout tnla_debug_layout(int digits, int indent);
