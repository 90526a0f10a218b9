// SPDX-License-Identifier: MIT

#include "drawing.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>

#include "text_file.h"

namespace {

constexpr double kWidth = 760.0;
constexpr double kMargin = 24.0;
constexpr double kTitleHeight = 40.0;
constexpr double kArrowHead = 8.0;
constexpr double kLegendStep = 22.0;

// Plain rules rather than variables, which not every viewer knows.
constexpr char kColours[] = R"(<style>
  .paper { fill: #ffffff; } text { fill: #1f2933; font: 14px system-ui, sans-serif; }
  .note { stroke: #ffffff; stroke-width: 4px; paint-order: stroke; }
  .title { font-size: 17px; font-weight: 600; }
  path { fill: none; stroke-linejoin: round; stroke-linecap: round; }
  path.data { stroke: #8a94a0; stroke-width: 1; } circle.data { fill: #8a94a0; }
  path.curve { stroke: #0b69c7; stroke-width: 2.5; } circle.curve { fill: #0b69c7; }
  path.second { stroke: #c2410c; stroke-width: 2.5; } circle.second { fill: #c2410c; }
  path.aid { stroke: #b9c1cb; stroke-width: 1; } circle.aid { fill: #b9c1cb; }
  path.accent { stroke: #b3261e; stroke-width: 2; } circle.accent { fill: #b3261e; }
  @media (prefers-color-scheme: dark) {
    .paper { fill: #14181d; } text { fill: #e4e8ec; } .note { stroke: #14181d; }
    path.data { stroke: #8f9aa6; } circle.data { fill: #8f9aa6; }
    path.curve { stroke: #6cb2f7; } circle.curve { fill: #6cb2f7; }
    path.second { stroke: #f59e5b; } circle.second { fill: #f59e5b; }
    path.aid { stroke: #4a535e; } circle.aid { fill: #4a535e; }
    path.accent { stroke: #ff8a80; } circle.accent { fill: #ff8a80; }
  }
</style>
)";

const char* name(Style style) {
  switch (style) {
    case Style::data:
      return "data";
    case Style::curve:
      return "curve";
    case Style::second:
      return "second";
    case Style::aid:
      return "aid";
    case Style::accent:
      return "accent";
  }
  return "";
}

std::string pixels(double x) {
  char text[32];
  std::snprintf(text, sizeof text, "%.2f", x);
  return text;
}

std::string escaped(const std::string& words) {
  std::string result;
  for (const char c : words) {
    if (c == '<') {
      result += "&lt;";
    } else if (c == '&') {
      result += "&amp;";
    } else {
      result += c;
    }
  }
  return result;
}

}  // namespace

Drawing::Drawing(const std::string& title, const std::vector<Point>& shown) : title_(title) {
  Point low = shown.at(0);
  Point high = low;
  for (const Point& p : shown) {
    low = {std::min(low.x, p.x), std::min(low.y, p.y)};
    high = {std::max(high.x, p.x), std::max(high.y, p.y)};
  }
  const double width = std::max(high.x - low.x, 1e-3 * (high.y - low.y));
  scale_ = (kWidth - 2.0 * kMargin) / width;
  corner_ = {low.x, high.y};
  height_ = kTitleHeight + scale_ * (high.y - low.y) + kMargin;
}

std::string Drawing::position(Point p) const {
  return pixels(kMargin + scale_ * (p.x - corner_.x)) + " " +
         pixels(kTitleHeight + scale_ * (corner_.y - p.y));
}

void Drawing::path(const std::vector<Point>& points, Style style, const char* end) {
  if (points.empty()) return;
  body_ += "<path class=\"" + std::string(name(style)) + "\" d=\"M";
  for (const Point& p : points) body_ += " " + position(p);
  body_ += std::string(end) + "\"/>\n";
}

void Drawing::line(const std::vector<Point>& points, Style style) { path(points, style, ""); }

void Drawing::closed_line(const std::vector<Point>& points, Style style) { path(points, style, " Z"); }

void Drawing::dots(const std::vector<Point>& points, double radius_in_pixels, Style style) {
  for (const Point& p : points) {
    const std::string at = position(p);
    const std::size_t blank = at.find(' ');
    body_ += "<circle class=\"" + std::string(name(style)) + "\" cx=\"" + at.substr(0, blank) + "\" cy=\"" +
             at.substr(blank + 1) + "\" r=\"" + pixels(radius_in_pixels) + "\"/>\n";
  }
}

void Drawing::arrow(Point from, Point to, Style style) {
  const double length = std::hypot(to.x - from.x, to.y - from.y);
  if (length == 0.0) return;
  const double head = std::min(kArrowHead / scale_, length) / length;
  const Point back{head * (from.x - to.x), head * (from.y - to.y)};
  const Point side{-0.4 * back.y, 0.4 * back.x};
  line({from, to}, style);
  line({{to.x + back.x + side.x, to.y + back.y + side.y},
        to,
        {to.x + back.x - side.x, to.y + back.y - side.y}},
       style);
}

void Drawing::text(Point at, const std::string& words) {
  const std::string place = position(at);
  const std::size_t blank = place.find(' ');
  body_ += "<text class=\"note\" x=\"" + place.substr(0, blank) + "\" y=\"" + place.substr(blank + 1) +
           "\">" + escaped(words) + "</text>\n";
}

void Drawing::explain(Style style, const std::string& words) {
  legend_.push_back({"<path class=\"" + std::string(name(style)) + "\" d=\"M 0 -5 h 28\"/>", words});
}

void Drawing::explain_dots(Style style, const std::string& words) {
  std::string sign;
  for (const char* const x : {"4", "14", "24"}) {
    sign += "<circle class=\"" + std::string(name(style)) + "\" cx=\"" + x + "\" cy=\"-5\" r=\"2\"/>";
  }
  legend_.push_back({sign, words});
}

void Drawing::write(const std::string& path) const {
  const double height = height_ + kLegendStep * static_cast<double>(legend_.size()) + kMargin;
  std::ofstream file(path);
  file << "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 " << pixels(kWidth) << " "
       << pixels(height) << "\" width=\"" << pixels(kWidth) << "\" role=\"img\">\n";
  file << "<title>" << escaped(title_) << "</title>\n" << kColours;
  file << "<rect class=\"paper\" width=\"100%\" height=\"100%\"/>\n";
  file << "<text class=\"title\" x=\"" << pixels(kMargin) << "\" y=\"26\">" << escaped(title_)
       << "</text>\n";
  file << body_;
  double y = height_ + kLegendStep;
  for (const auto& [sign, words] : legend_) {
    file << "<g transform=\"translate(" << pixels(kMargin) << " " << pixels(y) << ")\">" << sign
         << "<text x=\"38\">" << escaped(words) << "</text></g>\n";
    y += kLegendStep;
  }
  file << "</svg>\n";
  file.close();
  if (!file) throw DataError(path + ": cannot be written");
}
