float4 main(float2 uv:TEXCOORD0, uniform sampler2D Tex0):COLOR { return tex2D(Tex0,uv);} 
technique { pass { PixelShader = compile PROFILE main(); } }
