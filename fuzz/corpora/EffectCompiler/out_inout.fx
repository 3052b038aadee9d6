void f(in float a, out float b, inout float c){ b=a*2; c+=b; } float4 main(float2 uv:TEXCOORD0):COLOR { float x,y=uv.y; f(uv.x,x,y); return float4(x,y,0,1);} 
technique { pass { PixelShader = compile PROFILE main(); } }
