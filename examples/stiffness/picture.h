// SPDX-License-Identifier: MIT

#pragma once

#include <tarntnla.h>

#include <string>
#include <vector>

// What a load does to the frame of frame.h.
struct Response {
  std::string name;
  TnLaDblVec load;
  TnLaDblVec x;
};

// The pattern of K, and the frame bent by each load.
void draw_responses(const TnLaDblMat& K, const std::vector<Response>& responses, const std::string& path);
