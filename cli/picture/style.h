#pragma once

// How a picture looks, as parts of its document.
namespace fi_rotate {

constexpr const char* kStyle = R"(
    text { font: 11px ui-monospace, "DejaVu Sans Mono", "Liberation Mono", monospace; fill: #1b1f24; }
    .heading { font: bold 15px sans-serif; }
    .warning { font: bold 13px sans-serif; }
    .remark { font: 12px sans-serif; fill: #4a525c; }
    .above { stroke: #ffffff; stroke-width: 4; paint-order: stroke; }
    .group { font-weight: bold; }
    .page { fill: #ffffff; }
    .band { fill: #f1f3f5; }
    .grid { stroke: #c9ced4; stroke-width: 1; }
    .line { stroke: #1b1f24; stroke-width: 1.5; stroke-dasharray: 6 3; }
    .shape { stroke: #1b1f24; stroke-width: 1; }
    .plain .shape { fill: #a9c4e6; }
    .rotated .shape { fill: #ffffff; }
    .excluded .shape { fill: url(#stripes); }
    .invalid .shape { fill: url(#dots); stroke-dasharray: 3 2; }
    .unprotected .shape { fill: url(#hatch); stroke-dasharray: 3 2; }
    .chosen .shape { fill: #d9f2e0; stroke: #0a5c2e; stroke-width: 2; }
    .chosen .tag { fill: #0a5c2e; }
    .chosen text { font-weight: bold; }
    .chosen .on { fill: #ffffff; }
    .alarm { fill: #a31515; }
    .short .on { fill: #ffffff; font-weight: bold; }
    .cross { fill: none; stroke: #a31515; stroke-width: 2; }
    .paper { fill: #ffffff; }
    .ink { fill: #1b1f24; }
    @media screen and (prefers-color-scheme: dark) {
      text { fill: #e6e9ec; }
      .remark { fill: #b4bcc5; }
      .above { stroke: #14171a; }
      .page { fill: #14171a; }
      .band { fill: #1e2327; }
      .grid { stroke: #3a4149; }
      .line, .shape { stroke: #e6e9ec; }
      .plain .shape { fill: #2f5688; }
      .rotated .shape { fill: #14171a; }
      .chosen .shape { fill: #123a22; stroke: #6fe09a; }
      .chosen .tag { fill: #6fe09a; }
      .chosen .on, .short .on { fill: #14171a; }
      .alarm { fill: #ff9a8f; }
      .cross { stroke: #ff9a8f; }
      .paper { fill: #14171a; }
      .ink { fill: #e6e9ec; }
    }
  )";

constexpr const char* kPatterns = R"xml(  <defs>
    <pattern id="stripes" width="6" height="6" patternUnits="userSpaceOnUse" patternTransform="rotate(45)">
      <rect class="paper" width="6" height="6"/>
      <rect class="ink" width="1.4" height="6"/>
    </pattern>
    <pattern id="dots" width="4" height="4" patternUnits="userSpaceOnUse">
      <rect class="paper" width="4" height="4"/>
      <circle class="ink" cx="1" cy="1" r="0.7"/>
    </pattern>
    <pattern id="hatch" width="6" height="6" patternUnits="userSpaceOnUse" patternTransform="rotate(45)">
      <rect class="paper" width="6" height="6"/>
      <rect class="ink" width="0.7" height="6"/>
      <rect class="ink" width="6" height="0.7"/>
    </pattern>
  </defs>
)xml";

}  // namespace fi_rotate
