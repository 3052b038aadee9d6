sampler2D Tex0; sampler2D Tex1; float4 h(sampler2D s,float2 u){return tex2D(s,u);} float4 g(uniform sampler2D s,float2 u){return h(s,u);} float4 main(float2 uv:TEXCOORD0):COLOR { return max(g(Tex0,uv),g(Tex1,uv)*0);} 
technique { pass { PixelShader = compile PROFILE main(); } }
