// Lift, gamma, gain and saturation of a premultiplied picture: out = (in * (gain - lift) + lift) ^ (1 / gamma), then
// each component moved away from the luma (ITU-R BT.709) by the saturation.

constant sampler_t kPixels = CLK_NORMALIZED_COORDS_FALSE | CLK_ADDRESS_CLAMP_TO_EDGE | CLK_FILTER_NEAREST;

kernel void colourCorrect( read_only image2d_t from, write_only image2d_t to, float lift, float gamma, float gain,
                           float saturation )
{
    const int2 at = ( int2 )( get_global_id( 0 ), get_global_id( 1 ) );
    if( at.x >= get_image_width( from ) || at.y >= get_image_height( from ) )
        return;
    const float4 pixel = read_imagef( from, kPixels, at );
    const float alpha = ALPHA( pixel );
    float3 colour = ( float3 )( RED( pixel ), GREEN( pixel ), BLUE( pixel ) );
    if( alpha > 0.0f )
        colour /= alpha;
    colour = pow( max( colour * ( gain - lift ) + lift, 0.0f ), ( float3 )( 1.0f / max( gamma, 0.01f ) ) );
    const float luma = dot( colour, ( float3 )( 0.2126f, 0.7152f, 0.0722f ) );
    colour = clamp( luma + ( colour - luma ) * saturation, 0.0f, 1.0f );
    // Images on the GPU are written as they are read: red first. MAKEPIXEL is for bytes in the order of the screen.
    write_imagef( to, at, ( float4 )( colour * alpha, alpha ) );
}
