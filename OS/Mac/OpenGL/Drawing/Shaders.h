#pragma once

/// The programs' sources. They are written in a dialect that both versions of the language take:
/// IN, SMOOTH and FLAT name the inputs of a stage; each goes behind a header that defines them.
namespace GLDrawing::Shaders {

inline constexpr char kModernVertexHeader[] = R"(#version 130
#define IN in
#define SMOOTH smooth out
#define FLAT flat out
uniform vec4 toClip;
)";
inline constexpr char kModernFragmentHeader[] = R"(#version 130
#define SMOOTH smooth in
#define FLAT flat in
)";
inline constexpr char kOldVertexHeader[] = R"(#version 120
#define IN attribute
#define SMOOTH varying
#define FLAT varying
uniform vec4 toClip;
)";
inline constexpr char kOldFragmentHeader[] = R"(#version 120
#define SMOOTH varying
#define FLAT varying
)";

// Interpolated even where a fill has one colour: Mesa's fast path for rectangles takes no flat
// inputs.
inline constexpr char kFillVertex[] = R"(
IN vec2 place;
IN vec4 colour;
SMOOTH vec4 c;
void main()
{
    gl_Position = vec4(place * toClip.xy + toClip.zw, 0.0, 1.0);
    c = colour;
}
)";
inline constexpr char kFillFragment[] = R"(
SMOOTH vec4 c;
void main()
{
    gl_FragColor = c;
}
)";

inline constexpr char kLineVertex[] = R"(
IN vec2 place;
IN vec4 inside;
IN vec4 colour;
SMOOTH vec4 d;
FLAT vec4 c;
void main()
{
    gl_Position = vec4(place * toClip.xy + toClip.zw, 0.0, 1.0);
    d = inside;
    c = colour;
}
)";
inline constexpr char kLineFragment[] = R"(
SMOOTH vec4 d;
FLAT vec4 c;
void main()
{
    vec2 least = min(d.xy, d.zw);
    gl_FragColor = c * clamp(min(least.x, least.y), 0.0, 1.0);
}
)";

// The distance to an edge is how far the ellipse's equation is from 1, divided by its slope.
// Everything that varies is linear over a quad. Without an inside the inner edge is never reached.
inline constexpr char kEllipseVertex[] = R"(
IN vec2 place;
IN vec2 fromCentre;
IN vec4 inverseRadii;
IN vec4 fillColour;
IN vec4 lineColour;
SMOOTH vec4 outer;
SMOOTH vec4 inner;
FLAT vec4 fill;
FLAT vec4 line;
#ifdef PIE
IN vec3 rays;
SMOOTH vec3 r;
#endif
void main()
{
    gl_Position = vec4(place * toClip.xy + toClip.zw, 0.0, 1.0);
    outer.xy = fromCentre * inverseRadii.xy;
    outer.zw = outer.xy * inverseRadii.xy;
    inner.xy = fromCentre * inverseRadii.zw;
    inner.zw = inner.xy * inverseRadii.zw;
    if (inverseRadii.z < 0.0)
        inner = vec4(2.0, 0.0, 1e-4, 0.0);
    fill = fillColour;
    line = lineColour;
#ifdef PIE
    r = rays;
#endif
}
)";
inline constexpr char kEllipseFragment[] = R"(
uniform float sharpness;
SMOOTH vec4 outer;
SMOOTH vec4 inner;
FLAT vec4 fill;
FLAT vec4 line;
#ifdef PIE
SMOOTH vec3 r;
#endif
void main()
{
    vec2 k = vec2(dot(outer.xy, outer.xy), dot(inner.xy, inner.xy));
    vec2 g = vec2(dot(outer.zw, outer.zw), dot(inner.zw, inner.zw));
    vec2 covered = clamp((1.0 - k) * (0.5 * sharpness) * inversesqrt(g + 1e-12) + 0.5, 0.0, 1.0);
    vec4 c = fill * covered.y + line * max(covered.x - covered.y, 0.0);
#ifdef PIE
    // Between two rays less than half a turn apart, and not behind the centre; or inside of either.
    float inside = r.z < -1e5 ? max(r.x, r.y) : min(min(r.x, r.y), r.z);
    c *= clamp(inside * sharpness + 0.5, 0.0, 1.0);
#endif
    gl_FragColor = c;
}
)";

// Images. LAYOUT names how pixels lie in texels (ImageLayout): 0 one in each; 1 three components
// next to each other, four pixels in three texels; 2 two pixels of 4:2:2 in a texel.
inline constexpr char kImageVertex[] = R"(
IN vec2 place;
IN vec2 source;
SMOOTH vec2 at;
uniform vec2 perPixel;
#ifdef SCALED
IN vec4 limits;
FLAT vec4 l;
#endif
void main()
{
    gl_Position = vec4(place * toClip.xy + toClip.zw, 0.0, 1.0);
    at = source * perPixel;
#ifdef SCALED
    l = limits * perPixel.xyxy;
#endif
}
)";
inline constexpr char kImageFragment[] = R"(
uniform sampler2D image;
SMOOTH vec2 at;
#ifdef SCALED
FLAT vec4 l;
#endif
#ifdef OPACITY
uniform float opacity;
#endif
#if LAYOUT != 0
uniform vec2 texels;

vec4 texelAt(float x, float y)
{
    return texture2D(image, (vec2(x, y) + 0.5) / texels);
}
#ifdef VIDEO
// ITU-R BT.709 in video range.
const vec3 kMissing = vec3(16.0, 128.0, 128.0) / UNIT;
vec3 toColour(vec3 v)
{
    v = v * UNIT - vec3(16.0, 128.0, 128.0);
    v *= vec3(1.0 / 219.0, 1.0 / 224.0, 1.0 / 224.0);
    return clamp(vec3(v.x + 1.5748 * v.z, v.x - 0.187324 * v.y - 0.468124 * v.z,
                      v.x + 1.8556 * v.y), 0.0, 1.0);
}
#else
const vec3 kMissing = vec3(0.0);
vec3 toColour(vec3 v)
{
    return v;
}
#endif
#if LAYOUT == 1
// The bytes of a texel are blue, green, red and alpha.
float component(float index, float row, float missing)
{
    float x = floor((index + 0.5) / 4.0);
    float which = index - 4.0 * x;
    if (x > texels.x - 0.5)
        return missing;
    vec4 t = texelAt(x, row);
    return which < 0.5 ? t.b : which < 1.5 ? t.g : which < 2.5 ? t.r : t.a;
}
vec3 pixelAt(vec2 p)
{
    float first = 3.0 * p.x;
    return toColour(vec3(component(first, p.y, kMissing.x), component(first + 1.0, p.y, kMissing.y),
                         component(first + 2.0, p.y, kMissing.z)).ORDER);
}
#else
vec3 pixelAt(vec2 p)
{
    float x = floor((p.x + 0.5) / 2.0);
    if (x > texels.x - 0.5)
        return vec3(0.0);
    vec4 t = texelAt(x, p.y);
    bool second = p.x - 2.0 * x > 0.5;
    return toColour(vec3(second ? t.LUMA2 : t.LUMA1, t.ORDER));
}
#endif
vec4 sampled(vec2 p)
{
#ifdef SCALED
    p = clamp(p, l.xy, l.zw) - 0.5;
    vec2 low = floor(p), part = p - low;
    vec2 high = min(low + 1.0, floor(l.zw));
    low = max(low, floor(l.xy));
    return vec4(mix(mix(pixelAt(low), pixelAt(vec2(high.x, low.y)), part.x),
                    mix(pixelAt(vec2(low.x, high.y)), pixelAt(high), part.x), part.y), 1.0);
#else
    return vec4(pixelAt(floor(p)), 1.0);
#endif
}
#else
vec4 sampled(vec2 p)
{
#ifdef SCALED
    p = clamp(p, l.xy, l.zw);
#endif
    return texture2D(image, p);
}
#endif
void main()
{
    vec4 c = sampled(at);
// Whole vectors, and a limit that changes nothing: Mesa's fast path for plain copies mixes up red
// and blue where single components are set or read.
#ifdef OPAQUE
    c = max(c, vec4(0.0, 0.0, 0.0, 1.0));
#endif
#ifdef STRAIGHT
    c = min(c * vec4(c.aaa, 1.0), vec4(1.0));
#endif
#ifdef OPACITY
    c *= opacity;
#endif
    gl_FragColor = c;
}
)";

} // namespace GLDrawing::Shaders
