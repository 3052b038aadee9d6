float4 main(float2 uv:TEXCOORD0):COLOR { float i; float f=modf(1.5,i); float s=smoothstep(0,1,2); float d=distance(uv,float2(0.5,0.25)); return float4(f,s,d,length(normalize(uv)));} 
technique { pass { PixelShader = compile PROFILE main(); } }
