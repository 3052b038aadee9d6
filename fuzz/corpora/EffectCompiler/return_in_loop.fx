float f(float x){ for(int i=0;i<4;i++){ if(i*.25>=x) return i*.25; } return 1;} float4 main(float2 uv:TEXCOORD0):COLOR { return float4(f(.2),0,0,1);} 
technique { pass { PixelShader = compile PROFILE main(); } }
