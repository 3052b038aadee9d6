interface Shape { float area(float s); };
struct Square : Shape { float w; float area(float s) { return w * w * s; } };
struct Nothing : Shape { float area(float s) { return .75 * s; } };
float measure(Shape shape, float s) { return shape.area(s); }
float outer(Shape shape) { return measure(shape, 1); }
float4 main() : COLOR { Square a; a.w = .5; Nothing b; return float4(outer(a), outer(b), 0, 1); }
technique t { pass p { FragmentProgram = compile glslf main(); } }
