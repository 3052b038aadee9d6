vector<float,3> f(float a){return a;} float4 main(float2 uv:TEXCOORD0):COLOR { matrix<float,2,2> m={1,0,0,1}; return float4(f(uv.x).x*m[0][0],0,0,1);} 
technique { pass { PixelShader = compile PROFILE main(); } }
