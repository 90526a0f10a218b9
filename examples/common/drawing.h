// SPDX-License-Identifier: MIT

#pragma once

#include <string>
#include <vector>

struct Point {
  double x;
  double y;
};

// The colours and widths of a drawing; they follow the reader's light or dark setting.
enum class Style { data, curve, second, aid, accent };

// A drawing in SVG, one unit long in x as in y, with y upwards.
class Drawing {
 public:
  // Shows the box that these points fill, with a margin.
  Drawing(const std::string& title, const std::vector<Point>& shown);

  void line(const std::vector<Point>& points, Style style);
  void closed_line(const std::vector<Point>& points, Style style);
  void dots(const std::vector<Point>& points, double radius_in_pixels, Style style);
  // A line with a head at `to`; nothing if it has no length.
  void arrow(Point from, Point to, Style style);
  void text(Point at, const std::string& words);
  // An entry of the legend below the picture: for lines, for dots.
  void explain(Style style, const std::string& words);
  void explain_dots(Style style, const std::string& words);

  // Throws DataError if the file cannot be written.
  void write(const std::string& path) const;

 private:
  struct Entry {
    std::string sign;  // its SVG, beside the entry's origin
    std::string words;
  };

  std::string position(Point p) const;
  void path(const std::vector<Point>& points, Style style, const char* end);

  std::string title_;
  Point corner_;  // upper left
  double scale_;  // pixels per unit
  double height_;
  std::string body_;
  std::vector<Entry> legend_;
};
