float4 main(float2 uv:TEXCOORD0):COLOR { float s=0; int i=0; while(true){ i++; if(i>10) break; if(i%2==0) continue; if(i>5) break; s+=0.25;} float u=0; do{u+=0.25;}while(u<0.5); return float4(s,u,0,1);} 
technique { pass { PixelShader = compile PROFILE main(); } }
